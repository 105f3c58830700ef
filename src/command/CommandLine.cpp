// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/CommandLine.h"

#include "command/Arguments.h"
#include "command/CommandTable.h"

#include <QRegularExpression>

namespace tovek {

namespace {

/// Beyond any desktop; its square still fits an int.
constexpr int mostRegionPixels = 46340;

WrongCommand wrong(const QString &reason)
{
    return {reason};
}

WrongCommand unexpected(const QString &word)
{
    return wrong(QStringLiteral("unexpected argument %1").arg(word));
}

/// The names of those options that were given.
QStringList given(const Arguments &arguments, std::initializer_list<const char *> names)
{
    QStringList found;
    for (const char *name : names) {
        if (arguments.has(name))
            found += QString::fromLatin1(name);
    }
    return found;
}

WrongCommand notTogether(const QStringList &names)
{
    return wrong(QStringLiteral("%1 and %2 exclude each other").arg(names[0], names[1]));
}

bool isCapture(const QString &action)
{
    return action == QLatin1String("start-capture") || action == QLatin1String("capture-image")
        || action == QLatin1String("capture-text");
}

Command parseProgram(const QStringList &rest)
{
    const Arguments arguments = sortArguments("", rest);
    if (!arguments.error.isEmpty())
        return wrong(arguments.error);
    if (!arguments.words.isEmpty())
        return unexpected(arguments.words.first());
    if (arguments.has("--help"))
        return HelpCommand{};
    if (arguments.has("--version"))
        return VersionCommand{};
    if (arguments.has("--remove-shortcuts"))
        return RemoveShortcutsCommand{};

    ActionCommand command;
    QStringList names;
    for (const Arguments::Given &option : arguments.options) {
        const auto name = QString::fromLatin1(option.option->name);
        if (*option.option->action == '\0' || names.contains(name))
            continue;
        names += name;
        command.action = QString::fromLatin1(option.option->action);
    }
    if (names.size() > 1)
        return notTogether(names);
    if (arguments.has("--delay")) {
        bool isNumber = false;
        command.delaySeconds = arguments.value("--delay").toInt(&isNumber);
        if (!isNumber || command.delaySeconds < 0 || command.delaySeconds > longestDelaySeconds)
            return wrong(QStringLiteral("--delay needs a whole number of seconds up to %1")
                             .arg(longestDelaySeconds));
        if (!isCapture(command.action))
            return wrong(QStringLiteral("--delay goes with a capture"));
    }
    if (!names.isEmpty())
        return command;
    return StartCommand{arguments.has("--background")};
}

/// An empty rectangle for what is none.
QRect parseRegion(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^(-?\\d{1,5}),(-?\\d{1,5}),(\\d{1,5}),(\\d{1,5})$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return {};
    const QRect region(match.captured(1).toInt(), match.captured(2).toInt(),
                       match.captured(3).toInt(), match.captured(4).toInt());
    return std::max(region.width(), region.height()) > mostRegionPixels ? QRect() : region;
}

Command parseShot(const QStringList &rest)
{
    const Arguments arguments = sortArguments("shot", rest);
    if (!arguments.error.isEmpty())
        return wrong(arguments.error);
    if (!arguments.words.isEmpty())
        return unexpected(arguments.words.first());
    if (arguments.has("--help"))
        return HelpCommand{QStringLiteral("shot")};

    const QStringList areas = given(arguments, {"--all", "--screen", "--region", "--window"});
    if (areas.size() > 1)
        return notTogether(areas);
    ShotCommand shot;
    if (arguments.has("--screen")) {
        shot.area = ShotArea::screen;
        shot.screen = arguments.value("--screen");
    } else if (arguments.has("--region")) {
        shot.area = ShotArea::region;
        shot.region = parseRegion(arguments.value("--region"));
        if (shot.region.isEmpty())
            return wrong(QStringLiteral("--region needs four numbers of pixels: X,Y,W,H"));
    } else if (arguments.has("--window")) {
        shot.area = ShotArea::activeWindow;
        if (arguments.value("--window") != QLatin1String("active"))
            return wrong(QStringLiteral("--window knows only: active"));
    }
    shot.output = arguments.value("--output");
    if (arguments.has("--output") && shot.output.isEmpty())
        return wrong(QStringLiteral("--output needs a value: FILE"));
    shot.mayReplace = arguments.has("--force");
    return shot;
}

Command parseWords(const QStringList &rest)
{
    const Arguments arguments = sortArguments("words", rest);
    if (!arguments.error.isEmpty())
        return wrong(arguments.error);
    if (arguments.has("--help"))
        return HelpCommand{QStringLiteral("words")};
    const QStringList formats = given(arguments, {"--tsv", "--json"});
    if (formats.size() > 1)
        return notTogether(formats);
    if (arguments.words.isEmpty() || arguments.words.first().isEmpty())
        return wrong(QStringLiteral("words needs a picture: FILE or - for standard input"));
    if (arguments.words.size() > 1)
        return unexpected(arguments.words[1]);
    WordsCommand words;
    words.file = arguments.words.first();
    if (arguments.has("--tsv"))
        words.format = WordsFormat::tabs;
    if (arguments.has("--json"))
        words.format = WordsFormat::json;
    return words;
}

} // namespace

Command parseCommandLine(const QStringList &arguments)
{
    const QString first = arguments.value(0);
    if (first == QLatin1String("shot"))
        return parseShot(arguments.mid(1));
    if (first == QLatin1String("words"))
        return parseWords(arguments.mid(1));
    if (!first.isEmpty() && !first.startsWith('-'))
        return wrong(QStringLiteral("unknown command %1").arg(first));
    return parseProgram(arguments);
}

} // namespace tovek
