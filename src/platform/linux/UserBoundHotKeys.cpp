// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/UserBoundHotKeys.h"

#include <array>

namespace tovek {

namespace {

struct Desktop
{
    const char *name; ///< in lower case
    const char *place;
    const char *line; ///< %1 is the key, %2 the command, %3 the command's words in quotes
    std::array<const char *, 3> modifiers; ///< control, option, shift, each before the key
    const char *none; ///< instead of them where there is none
    const char *between; ///< modifiers and key
    const char *key;
};

// The keys act when they are let go where that can be said: a capture then waits for nothing.
// clang-format off
constexpr Desktop desktops[] = {
    {"labwc", "~/.config/labwc/rc.xml, within <keyboard>",
     "<keybind key=\"%1\" onRelease=\"yes\"><action name=\"Execute\" command=\"%2\"/></keybind>",
     {"C-", "A-", "S-"}, "", "", "Print"},
    {"river", "~/.config/river/init", "riverctl map -release normal %1 spawn '%2'",
     {"Control+", "Alt+", "Shift+"}, "None", " ", "Print"},
    {"niri", "~/.config/niri/config.kdl, within binds", "%1 { spawn %3; }",
     {"Ctrl+", "Alt+", "Shift+"}, "", "", "Print"},
    {"hyprland", "~/.config/hypr/hyprland.conf", "bindr = %1, exec, %2",
     {"CTRL+", "ALT+", "SHIFT+"}, "", ", ", "Print"},
    {"wayfire", "~/.config/wayfire.ini, under [command]",
     "release_binding_tovek%4 = %1\ncommand_tovek%4 = %2",
     {"<ctrl> ", "<alt> ", "<shift> "}, "", "", "KEY_SYSRQ"},
    {"sway", "~/.config/sway/config", "bindsym --release %1 exec %2",
     {"Ctrl+", "Mod1+", "Shift+"}, "", "", "Print"},
    {"cosmic", "Settings, Input Devices, Keyboard, Keyboard shortcuts, Custom", "%2",
     {"", "", ""}, "", "", ""},
    {"gnome", "Settings, Keyboard, View and Customise Shortcuts, Custom Shortcuts", "%2",
     {"", "", ""}, "", "", ""},
};
constexpr Desktop anyDesktop{"", "the keyboard settings of this desktop", "%2",
                             {"", "", ""}, "", "", ""};
// clang-format on

const Desktop &known(const QStringList &names)
{
    for (const Desktop &desktop : desktops) {
        if (names.contains(QLatin1String(desktop.name)))
            return desktop;
    }
    return anyDesktop;
}

QString keyOf(const Desktop &desktop, quint32 modifiers)
{
    constexpr std::array<quint32, 3> bits{ComboModifier::control, ComboModifier::option,
                                          ComboModifier::shift};
    QString names;
    for (size_t i = 0; i < bits.size(); ++i) {
        if (modifiers & bits[i])
            names += QLatin1String(desktop.modifiers[i]);
    }
    if (names.isEmpty())
        names = QLatin1String(desktop.none);
    else if (*desktop.between)
        names.chop(1); // the sign that would join the key
    return names + QLatin1String(desktop.between) + QLatin1String(desktop.key);
}

QString quotedWords(const QString &command)
{
    QStringList words = command.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (QString &word : words)
        word = QLatin1Char('"') + word + QLatin1Char('"');
    return words.join(QLatin1Char(' '));
}

} // namespace

UserBoundHotKeys::UserBoundHotKeys(const QString &currentDesktop)
    : m_desktops(currentDesktop.toLower().split(QLatin1Char(':'), Qt::SkipEmptyParts))
{
}

std::optional<CommandBinding> UserBoundHotKeys::commandBinding(KeyCombo combo,
                                                               const QString &command) const
{
    const Desktop &desktop = known(m_desktops);
    QString line = QString::fromUtf8(desktop.line);
    // One name a binding, where bindings have names.
    line.replace(QLatin1String("%4"), QString::number(combo.modifiers, 16));
    line.replace(QLatin1String("%1"), keyOf(desktop, combo.modifiers));
    line.replace(QLatin1String("%3"), quotedWords(command));
    line.replace(QLatin1String("%2"), command);
    return CommandBinding{QString::fromUtf8(desktop.place), line};
}

} // namespace tovek
