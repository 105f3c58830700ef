// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/Localization.h"

namespace KeyboardShortcuts {

namespace {

struct Text
{
    const char *key;
    const char *text;
};

constexpr Text texts[] = {
    {"space_key", "Space"},
    {"record_shortcut", "Record Shortcut"},
    {"press_shortcut", "Press Shortcut"},
    {"keyboard_shortcut_used_by_menu_item",
     "This keyboard shortcut cannot be used: it belongs to the menu item “%1”."},
    {"keyboard_shortcut_disallowed",
     "This combination of keys cannot be used as a keyboard shortcut."},
    {"keyboard_shortcut_used_by_system",
     "This keyboard shortcut is already used by the desktop or by another program."},
    {"keyboard_shortcuts_can_be_changed",
     "Most of them can be changed in the keyboard settings of the desktop."},
    {"keyboard_shortcut_used_by_field", "This keyboard shortcut already belongs to “%1”."},
    {"keyboard_shortcut_can_be_moved", "A shortcut can start one thing only."},
    {"keyboard_shortcut_refused", "Does not work: another program holds these keys."},
    {"move_shortcut", "Use Here Instead"},
    {"clear_shortcut", "Clear Shortcut"},
    {"ok", "OK"},
    {"force_use_shortcut", "Use Anyway"},
};

} // namespace

QString localized(const QString &key)
{
    for (const Text &known : texts) {
        if (key == QLatin1String(known.key))
            return QString::fromUtf8(known.text);
    }
    return key;
}

} // namespace KeyboardShortcuts
