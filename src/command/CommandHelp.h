// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

namespace tovek {

/// What --help prints: of the program when `command` is empty. Ends with a line feed.
QString helpText(const QString &command);

/// Scripts with which shells complete the command line, and the lists of options in the manual
/// page, all of the one table of options.
QString bashCompletion();
QString zshCompletion();
QString fishCompletion();
/// The text as one word of a script, whatever is in it: for shells that quote as sh does, and for
/// fish, which does not.
QString shellWord(QString text);
QString fishWord(QString text);
/// The options of a command as an mdoc list; of the program when `command` is empty.
QString manualOptions(const QString &command);

} // namespace tovek
