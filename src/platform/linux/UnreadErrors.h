// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

class QString;

namespace tovek {

/// True where nobody reads this process's standard error: it was started from a menu or by a key
/// of the desktop, and what it writes is thrown away or goes into a log. Not for pipes and other
/// files, which a script may read.
bool areErrorsUnread();

/// Shows a notification, and waits for a moment until the desktop has it. Needs no application.
void notifyOfError(const QString &error);

} // namespace tovek
