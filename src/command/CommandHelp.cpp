// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/CommandHelp.h"

#include "command/CommandTable.h"

#include <QList>

#include <algorithm>
#include <utility>

namespace tovek {

namespace {

/// "-o, --output FILE".
QString written(const OptionInfo &option)
{
    QString text =
        *option.shortName ? tableText(option.shortName) + QStringLiteral(", ") : QString();
    text += tableText(option.name);
    if (*option.value)
        text += ' ' + tableText(option.value);
    return text;
}

/// Two columns, the second one broken nowhere.
QString table(const QList<std::pair<QString, QString>> &rows)
{
    qsizetype width = 0;
    for (const auto &row : rows)
        width = std::max(width, row.first.size());
    QString text;
    for (const auto &[left, right] : rows)
        text += QStringLiteral("  ") + left.leftJustified(width + 2) + right + '\n';
    return text;
}

QString usage(const CommandInfo &command)
{
    const QString arguments = *command.arguments ? ' ' + tableText(command.arguments) : QString();
    return QStringLiteral("tovek %1 [OPTION]...%2").arg(tableText(command.name), arguments);
}

QString optionTable(const QString &command)
{
    QList<std::pair<QString, QString>> rows;
    for (const OptionInfo &option : allOptions()) {
        if (command == QLatin1String(option.command))
            rows.append({written(option), tableText(option.help)});
    }
    return QStringLiteral("\nOptions:\n") + table(rows);
}

} // namespace

QString helpText(const QString &command)
{
    for (const CommandInfo &info : allCommands()) {
        if (command == QLatin1String(info.name))
            return QStringLiteral("Usage: %1\n%2.\n").arg(usage(info), tableText(info.help))
                + optionTable(command);
    }
    QList<std::pair<QString, QString>> commands;
    for (const CommandInfo &info : allCommands())
        commands.append({usage(info), tableText(info.help)});
    return QStringLiteral("Usage: tovek [OPTION]...\n"
                          "Freezes the screen and copies or saves a part of it. Starts Tovek, or "
                          "asks the running one.\n")
        + optionTable(QString()) + QStringLiteral("\nCommands:\n") + table(commands);
}

} // namespace tovek
