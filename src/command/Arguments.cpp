// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/Arguments.h"

#include "command/CommandTable.h"

#include <algorithm>

namespace tovek {

namespace {

/// What the toolkit takes out of the program's arguments, with the number of values it takes along.
int toolkitArguments(const QString &argument)
{
    static const QStringList withValue{
        QStringLiteral("-display"),  QStringLiteral("-platform"), QStringLiteral("-platformtheme"),
        QStringLiteral("-geometry"), QStringLiteral("-style"),    QStringLiteral("-stylesheet"),
    };
    if (argument == QLatin1String("-reverse"))
        return 1;
    return withValue.contains(argument) ? 2 : 0;
}

QString textOf(const char *text)
{
    return QString::fromLatin1(text);
}

} // namespace

const Arguments::Given *Arguments::find(const char *name) const
{
    const auto last = std::find_if(options.rbegin(), options.rend(), [name](const Given &given) {
        return QLatin1String(given.option->name) == QLatin1String(name);
    });
    return last == options.rend() ? nullptr : &*last;
}

QString Arguments::value(const char *name) const
{
    const Given *given = find(name);
    return given ? given->value : QString();
}

Arguments sortArguments(const char *command, const QStringList &arguments)
{
    Arguments sorted;
    const bool isProgram = *command == '\0';
    for (qsizetype i = 0; i < arguments.size() && sorted.error.isEmpty(); ++i) {
        const QString &argument = arguments[i];
        if (argument == QLatin1String("--")) {
            sorted.words += arguments.mid(i + 1);
            break;
        }
        if (!argument.startsWith('-') || argument == QLatin1String("-")) {
            sorted.words += argument;
            continue;
        }
        if (const int count = isProgram ? toolkitArguments(argument) : 0) {
            i += count - 1;
            continue;
        }
        const qsizetype equals =
            argument.startsWith(QLatin1String("--")) ? argument.indexOf('=') : -1;
        const QString name = argument.left(equals); // all of it where there is none
        const OptionInfo *option = findOption(QLatin1String(command), name);
        const bool wantsValue = option && option->kind != ValueKind::none;
        if (!option) {
            sorted.error = QStringLiteral("unknown option %1").arg(name);
        } else if (!wantsValue && equals >= 0) {
            sorted.error = QStringLiteral("%1 takes no value").arg(name);
        } else if (wantsValue && equals < 0 && i + 1 == arguments.size()) {
            sorted.error = QStringLiteral("%1 needs a value: %2").arg(name, textOf(option->value));
        } else {
            QString value;
            if (wantsValue)
                value = equals >= 0 ? argument.mid(equals + 1) : arguments[++i];
            sorted.options.push_back({option, value});
        }
    }
    return sorted;
}

} // namespace tovek
