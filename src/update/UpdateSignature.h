// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "update/UpdateFeed.h"

#include <QByteArray>

#include <optional>

class QIODevice;

namespace tovek {

/// Signatures of packages: Ed25519 over a text that names all of an entry of the feed.
namespace UpdateSignature {

inline constexpr qsizetype publicKeyBytes = 32;
inline constexpr qsizetype secretKeyBytes = 64;

/// The digest of all that the device gives from where it stands; absent when it cannot be read.
std::optional<QByteArray> digest(QIODevice &device);
bool isValid(const QByteArray &signature, const QByteArray &publicKey, const SignedEntry &entry);
/// Empty when the key is none.
QByteArray sign(const QByteArray &secretKey, const SignedEntry &entry);
/// What of the feed is signed by the owner of the key.
UpdateFeed signedPart(const UpdateFeed &feed, const QByteArray &publicKey);

struct KeyPair
{
    QByteArray publicKey;
    QByteArray secretKey;
};
KeyPair makeKeyPair();

} // namespace UpdateSignature

} // namespace tovek
