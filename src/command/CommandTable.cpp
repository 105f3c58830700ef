// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/CommandTable.h"

#include <QString>

namespace tovek {

namespace {

// clang-format off
constexpr OptionInfo options[] = {
    {"", "", "--background", "", ValueKind::none,
     "Start without opening the settings", ""},
    {"", "", "--capture", "", ValueKind::none,
     "Freeze the screens, to select, draw, copy and save", "start-capture"},
    {"", "", "--capture-image", "", ValueKind::none,
     "Freeze the screens and copy what is selected", "capture-image"},
    {"", "", "--capture-text", "", ValueKind::none,
     "Freeze the screens and copy the text of what is selected", "capture-text"},
    {"", "", "--delay", "SECONDS", ValueKind::number,
     "Count down before the capture, 1 to 3600 seconds", ""},
    {"", "", "--preferences", "", ValueKind::none,
     "Open the settings", "preferences"},
    {"", "", "--about", "", ValueKind::none,
     "Open the page about Tovek", "about"},
    {"", "", "--check-for-updates", "", ValueKind::none,
     "Look for a new version, in builds that update themselves", "check-for-updates"},
    {"", "", "--quit", "", ValueKind::none,
     "Quit the running Tovek", "quit"},
    {"", "", "--remove-shortcuts", "", ValueKind::none,
     "Take the shortcuts out of the settings of GNOME, before Tovek is uninstalled", ""},
    {"", "", "--version", "", ValueKind::none,
     "Print the version", ""},
    {"", "-h", "--help", "", ValueKind::none,
     "Print this help", ""},

    {"shot", "", "--all", "", ValueKind::none,
     "All screens in one picture; the default", ""},
    {"shot", "", "--screen", "NAME", ValueKind::screen,
     "One screen, by its name", ""},
    {"shot", "", "--region", "X,Y,W,H", ValueKind::text,
     "A rectangle of the desktop, in pixels from its top left corner", ""},
    {"shot", "", "--window", "active", ValueKind::window,
     "The active window with its frame, as the screen shows it", ""},
    {"shot", "-o", "--output", "FILE", ValueKind::file,
     "The PNG to write, - for standard output; without it, one in the save folder", ""},
    {"shot", "", "--force", "", ValueKind::none,
     "Replace the file if it exists", ""},
    {"shot", "-h", "--help", "", ValueKind::none,
     "Print this help", ""},

    {"words", "", "--tsv", "", ValueKind::none,
     "One word a line: left, top, width, height in pixels, number of its line, text", ""},
    {"words", "", "--json", "", ValueKind::none,
     "The same as a JSON array of objects", ""},
    {"words", "-h", "--help", "", ValueKind::none,
     "Print this help", ""},
};

constexpr CommandInfo commands[] = {
    {"shot", "", "Write a picture of the desktop to a file, without a window"},
    {"words", "FILE|-", "Print the words of a picture"},
};
// clang-format on

} // namespace

std::span<const OptionInfo> allOptions()
{
    return options;
}

std::span<const CommandInfo> allCommands()
{
    return commands;
}

const OptionInfo *findOption(QLatin1String command, const QString &name)
{
    for (const OptionInfo &option : options) {
        if (command == QLatin1String(option.command) && !name.isEmpty()
            && (name == QLatin1String(option.name) || name == QLatin1String(option.shortName)))
            return &option;
    }
    return nullptr;
}

} // namespace tovek
