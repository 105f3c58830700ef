// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace tovek {

struct OptionInfo;

/// The arguments of one command, sorted into options and the rest.
struct Arguments
{
    struct Given
    {
        const OptionInfo *option = nullptr; ///< of the table
        QString value; ///< empty for options without one
    };

    std::vector<Given> options; ///< in their order
    QStringList words; ///< what is no option, "-" included
    QString error; ///< the first thing that is wrong, in one line; empty when nothing is

    bool has(const char *name) const { return find(name) != nullptr; }
    /// Empty when the option was not given; the last one counts.
    QString value(const char *name) const;

private:
    const Given *find(const char *name) const;
};

/// Sorts the arguments by the table's options of the command (empty: of the program itself). A
/// value is the next argument or follows a "=". After "--" come words only.
Arguments sortArguments(const char *command, const QStringList &arguments);

} // namespace tovek
