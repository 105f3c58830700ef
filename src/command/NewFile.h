// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace tovek {

/// Writes the bytes to a file that does not exist yet, which nobody but its owner may read. Absent
/// on success, otherwise the reason in words; what exists is left alone, and nothing half written
/// stays behind. What is there and no file to lose, such as a pipe or a device, is written to.
[[nodiscard]] std::optional<QString> writeNewFile(const QString &path, const QByteArray &bytes);

/// Writes all bytes to an open descriptor. Absent on success, otherwise the reason.
[[nodiscard]] std::optional<QString> writeTo(int descriptor, const QByteArray &bytes);

} // namespace tovek
