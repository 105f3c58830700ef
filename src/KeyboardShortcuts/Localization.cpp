// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/Localization.h"

#include <QLocale>

namespace KeyboardShortcuts {

namespace {

struct Text
{
    const char *key;
    const char *english;
    const char *german;
};

constexpr Text texts[] = {
    {"space_key", "Space", "Leertaste"},
    {"record_shortcut", "Record Shortcut", "Aufnehmen"},
    {"press_shortcut", "Press Shortcut", "Tasten drücken"},
    {"keyboard_shortcut_used_by_menu_item",
     "This keyboard shortcut cannot be used: it belongs to the menu item “%1”.",
     "Dieser Kurzbefehl kann nicht verwendet werden: Er gehört zum Menüeintrag „%1“."},
    {"keyboard_shortcut_disallowed",
     "This combination of keys cannot be used as a keyboard shortcut.",
     "Diese Tastenkombination kann nicht als Kurzbefehl verwendet werden."},
    {"keyboard_shortcut_used_by_system",
     "This keyboard shortcut is already used by the desktop or by another program.",
     "Dieser Kurzbefehl wird bereits von der Arbeitsumgebung oder einem anderen Programm "
     "verwendet."},
    {"keyboard_shortcuts_can_be_changed",
     "Most of them can be changed in the keyboard settings of the desktop.",
     "Die meisten lassen sich in den Tastatureinstellungen der Arbeitsumgebung ändern."},
    {"clear_shortcut", "Clear Shortcut", "Kurzbefehl entfernen"},
    {"ok", "OK", "OK"},
    {"force_use_shortcut", "Use Anyway", "Trotzdem verwenden"},
};

} // namespace

QString localized(const QString &key)
{
    const bool isGerman = QLocale().language() == QLocale::German;
    for (const Text &text : texts) {
        if (key == QLatin1String(text.key))
            return QString::fromUtf8(isGerman ? text.german : text.english);
    }
    return key;
}

} // namespace KeyboardShortcuts
