// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

namespace tovek {

/// Writes one line to standard output at once. Line breaks inside the text become blanks, so that
/// one event is always one line. Any thread.
void logLine(const QString &text);

/// From now on the lines go to standard error: standard output is the result of the process.
void logToStandardError();

} // namespace tovek
