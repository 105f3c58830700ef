// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QVariantMap>

namespace tovek {

/// What the program says about itself, by the keys that it is asked for with.
namespace BundleInformation {

/// CFBundleName, CFBundleShortVersionString and CFBundleVersion, from the build.
QVariantMap standard();
/// "Unknown" for a value that is missing or no string.
QString string(const QVariantMap &information, const QString &key);
/// The program's version, "1.2".
QString version();
/// "Version 1.2 (34)".
QString versionLine(const QVariantMap &information);

} // namespace BundleInformation

} // namespace tovek
