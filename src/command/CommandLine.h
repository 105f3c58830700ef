// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QRect>
#include <QString>
#include <QStringList>

#include <variant>

namespace tovek {

/// The program itself, with its settings in front or without.
struct StartCommand
{
    bool inBackground = false;

    bool operator==(const StartCommand &) const = default;
};

/// Something for the running program, by the name that it has on the session bus.
struct ActionCommand
{
    QString action;
    int delaySeconds = 0; ///< for captures, 0 to `longestDelaySeconds`

    bool operator==(const ActionCommand &) const = default;
};

/// What of the desktop goes into a picture.
enum class ShotArea { allScreens, screen, region, activeWindow };

/// A picture of the desktop, without the running program and without a window.
struct ShotCommand
{
    ShotArea area = ShotArea::allScreens;
    QString screen; ///< its name
    QRect region; ///< native pixels, y down, global; never empty when it is asked for
    QString output; ///< "-" for standard output; empty: the save folder, named after the time
    bool mayReplace = false;

    bool operator==(const ShotCommand &) const = default;
};

enum class WordsFormat { text, tabs, json };

/// The words of a picture file.
struct WordsCommand
{
    QString file; ///< "-" for standard input
    WordsFormat format = WordsFormat::text;

    bool operator==(const WordsCommand &) const = default;
};

struct VersionCommand
{
    bool operator==(const VersionCommand &) const = default;
};

/// What Tovek wrote into the desktop's settings goes, as before it is uninstalled: no package may
/// change them.
struct RemoveShortcutsCommand
{
    bool operator==(const RemoveShortcutsCommand &) const = default;
};

struct HelpCommand
{
    QString of; ///< empty: all of the program; otherwise the name of a command

    bool operator==(const HelpCommand &) const = default;
};

/// What cannot be done, in one line.
struct WrongCommand
{
    QString reason;

    bool operator==(const WrongCommand &) const = default;
};

using Command = std::variant<StartCommand, ActionCommand, ShotCommand, WordsCommand, VersionCommand,
                             RemoveShortcutsCommand, HelpCommand, WrongCommand>;

constexpr int longestDelaySeconds = 3600;

/// The arguments without the program's name. Options of the toolkit (-platform, -style and the
/// like) mean nothing here and are left to it.
[[nodiscard]] Command parseCommandLine(const QStringList &arguments);

} // namespace tovek
