// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "update/Version.h"

#include <QDateTime>
#include <QUrl>

#include <variant>

namespace tovek {

/// What this program can be installed as.
enum class PackageKind { appImage, debian };

/// A new version as one file, as the feed names it. Nothing here has been verified.
struct UpdatePackage
{
    PackageKind kind = PackageKind::appImage;
    QString architecture; ///< of the machine, as the kernel names it: x86_64
    QUrl url; ///< always HTTPS
    qint64 length = 0; ///< bytes; positive
    QByteArray digest; ///< BLAKE2b, 64 bytes
    QByteArray signature; ///< Ed25519, 64 bytes, over all of this but the address; see SignedEntry
};

struct UpdateItem
{
    Version version;
    QString versionText;
    QString notes; ///< plain text
    std::optional<Version> minimumSystem; ///< of the C library, the oldest that it runs on
    QString minimumSystemText; ///< empty: any
    QList<UpdatePackage> packages;
};

struct UpdateFeed
{
    QDateTime date; ///< when it was made
    QList<UpdateItem> items;
};

/// What the signature of a package binds: the whole entry of the feed, and the feed's date. So no
/// part of one can be mixed with another, and no feed made to look newer than it is.
struct SignedEntry
{
    QString version;
    PackageKind kind = PackageKind::appImage;
    QString architecture;
    qint64 length = 0;
    QByteArray digest;
    QString minimumSystem; ///< empty: any
    QDateTime date; ///< of the feed
};
SignedEntry entryOf(const UpdateFeed &feed, const UpdateItem &item, const UpdatePackage &package);
/// As it stands in the feed.
QString nameOf(PackageKind kind);
std::optional<PackageKind> packageKind(const QString &name);

/// Why a feed is no feed.
enum class FeedError { tooLarge, malformed, tooDeep, undated, empty };

/// Reads the RSS feed of updates. Items and packages that lack something, or name it wrongly, are
/// left out: a newer version of the format may add to it. Text and elements have limits, and there
/// are no entities but those of XML itself.
std::variant<UpdateFeed, FeedError> readFeed(const QByteArray &xml);

/// Bytes; what is longer need not be fetched.
inline constexpr qint64 largestFeed = 1024 * 1024;
/// Bytes of one package.
inline constexpr qint64 largestPackage = 512LL * 1024 * 1024;

} // namespace tovek
