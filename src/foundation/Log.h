// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

namespace tovek {

/// Writes one line to standard output at once. Line breaks inside the text become blanks, so that
/// one event is always one line. Any thread.
///
/// Waits for nobody: a line is lost where a pipe or terminal takes no more.
void logLine(const QString &text);

/// From now on the lines go to standard error: standard output is the result of the process.
void logToStandardError();

/// Has what the toolkit says on standard error wait for nobody either, and readers that leave cost
/// only the lines. Called once by a program that must go on without them.
void survivePeopleWhoDoNotRead();

} // namespace tovek
