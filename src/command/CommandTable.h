// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <span>

namespace tovek {

/// What the value of an option is, for shells that offer to complete it.
enum class ValueKind { none, number, text, screen, window, file };

/// One option. This table is what is parsed, what --help and the manual page say, and what shells
/// complete: an option that is not in it does not exist.
struct OptionInfo
{
    const char *command; ///< the command that it belongs to; empty: the program itself
    const char *shortName; ///< with its dash; may be empty
    const char *name; ///< with its dashes
    const char *value; ///< the name of its value; empty when it has none
    ValueKind kind;
    const char *help; ///< a short phrase that begins with a capital letter
    const char *action; ///< the action of the running program that it asks for; mostly empty
};

/// A command, which comes before its options.
struct CommandInfo
{
    const char *name;
    const char *arguments; ///< as in its line of usage, after the options
    const char *help;
};

/// A text of the table.
inline QString tableText(const char *text)
{
    return QString::fromLatin1(text);
}

std::span<const OptionInfo> allOptions();
std::span<const CommandInfo> allCommands();
/// The option of the command with this short or long name; null when there is none.
const OptionInfo *findOption(QLatin1String command, const QString &name);

} // namespace tovek
