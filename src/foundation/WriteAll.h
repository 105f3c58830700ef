// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>

namespace tovek {

/// Writes all of it to the file descriptor, however many calls that takes: 0, or the error number.
/// Waits as long as the file system does.
int writeAll(int descriptor, const QByteArray &bytes);

} // namespace tovek
