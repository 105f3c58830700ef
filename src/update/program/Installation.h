// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "update/UpdateFeed.h"

#include <QString>

#include <optional>

class QProcessEnvironment;

namespace tovek {

/// How the running program is installed.
struct Installation
{
    PackageKind kind = PackageKind::appImage;
    QString file; ///< the AppImage, links resolved; empty for a Debian package
    QString downloads; ///< the folder that a package is downloaded to
};

/// Of the program with this path; absent when it is neither an AppImage nor of a Debian package.
std::optional<Installation> findInstallation(const QString &program,
                                             const QProcessEnvironment &environment);

/// Of the C library.
QString systemVersion();

} // namespace tovek
