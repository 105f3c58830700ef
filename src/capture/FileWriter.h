// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace tovek {

/// Writes the bytes to the file, which is created, or replaced when it exists. Absent on success,
/// otherwise the reason in words. The folder is not created. Any thread.
///
/// The bytes go to a file without a name in the same folder (a hidden one where there is no such
/// thing), which then takes the name: nobody sees half a file, nothing is left by a process that is
/// killed, and a disk that is full costs neither the older file nor leaves a broken one. What is
/// not an ordinary file (a link, a device), or lies in a folder that takes no new files, is written
/// in place.
[[nodiscard]] std::optional<QString> writeFile(const QString &path, const QByteArray &bytes);

/// Makes the file survive a power failure, which may take long; errors are of no interest.
void syncToDisk(const QString &path);

} // namespace tovek
