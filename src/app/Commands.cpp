// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/Commands.h"

#include "app/BundleInformation.h"
#include "app/PictureCommands.h"
#include "app/PlatformFactory.h"
#include "command/CommandHelp.h"
#include "platform/SingleInstance.h"

#include <QCoreApplication>

#include <cstdio>

namespace tovek {

namespace {

enum Status { done = 0, failed = 1, misused = 2 };

Status print(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    const bool isWritten =
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout) == size_t(bytes.size());
    return isWritten && std::fflush(stdout) == 0 ? done : failed;
}

/// Carries out each command that does without the resident program.
struct Runner
{
    int &argc;
    char **argv;

    int operator()(const VersionCommand &) const
    {
        return print(QStringLiteral("Tovek %1\n").arg(BundleInformation::version()));
    }
    int operator()(const RemoveShortcutsCommand &) const
    {
        const QCoreApplication application(argc, argv);
        return told(removeShortcuts());
    }
    int operator()(const HelpCommand &help) const { return print(helpText(help.of)); }
    int operator()(const WrongCommand &wrong) const
    {
        complain(QStringLiteral("%1; see tovek --help").arg(wrong.reason));
        return misused;
    }
    int operator()(const ShotCommand &shot) const
    {
        const QString obstacle = missingDisplay();
        return told(obstacle.isEmpty() ? runShot(shot, argc, argv) : obstacle);
    }
    int operator()(const WordsCommand &words) const { return told(runWords(words, argc, argv)); }
    // Not without the resident program.
    int operator()(const StartCommand &) const { return done; }
    int operator()(const ActionCommand &) const { return done; }

    static int told(const QString &error)
    {
        if (!error.isEmpty())
            complain(error);
        return error.isEmpty() ? done : failed;
    }
};

} // namespace

Command commandOf(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments += QString::fromLocal8Bit(argv[i]);
    return parseCommandLine(arguments);
}

std::optional<Wish> wishOf(const Command &command)
{
    if (const auto *start = std::get_if<StartCommand>(&command))
        return Wish{start->inBackground, {}};
    if (const auto *action = std::get_if<ActionCommand>(&command))
        return Wish{true, *action};
    return std::nullopt;
}

std::optional<int> leaveToTheFirst(SingleInstance &instance, const Wish &wish)
{
    const QString &action = wish.action.action;
    if (instance.claim() != SingleInstance::Role::second) {
        if (action != QLatin1String("quit"))
            return std::nullopt;
        complain(QStringLiteral("Tovek is not running"));
        return failed;
    }
    if (!action.isEmpty()) {
        return Runner::told(instance.askFirst(action, wish.action.delaySeconds));
    }
    // A session that starts what is running already has not asked for a window.
    if (!wish.inBackground)
        instance.reopenFirst();
    return done;
}

int runCommand(const Command &command, int &argc, char **argv)
{
    return std::visit(Runner{argc, argv}, command);
}

void complain(const QString &reason)
{
    const QByteArray line = "tovek: " + reason.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
    tellUnreadError(reason);
}

} // namespace tovek
