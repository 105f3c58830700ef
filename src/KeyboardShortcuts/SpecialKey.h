// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <Qt>

#include <optional>
#include <vector>

namespace KeyboardShortcuts {

/// The keys that are called by a symbol or name instead of the character that the layout gives
/// them. The numbers run in the order of the table.
enum class SpecialKey {
    return_,
    delete_,
    deleteForward,
    end,
    escape,
    help,
    home,
    space,
    tab,
    pageUp,
    pageDown,
    upArrow,
    rightArrow,
    downArrow,
    leftArrow,
    f1,
    f20 = f1 + 19, ///< those between are f1 + n
    keypad0,
    keypad9 = keypad0 + 9, ///< those between are keypad0 + n
    keypadClear,
    keypadDecimal,
    keypadDivide,
    keypadEnter,
    keypadEquals,
    keypadMinus,
    keypadMultiply,
    keypadPlus,
};

/// Absent when the key has no name of its own.
std::optional<SpecialKey> specialKey(qint64 carbonKeyCode);
/// The key codes of all special keys, in the order of the cases.
std::vector<int> specialKeyCodes();
/// The symbol or name, for example "⇥" or "F12".
QString text(SpecialKey key);
/// The key as this desktop's menus name it. Print Screen, Scroll Lock and Pause are what sits in
/// the places of F13 to F15, Insert in that of Help, Num Lock in that of the keypad's Clear.
QKeyCombination menuKey(SpecialKey key);

/// The inverse.
std::optional<SpecialKey> specialKeyOf(QKeyCombination menuKey);

} // namespace KeyboardShortcuts
