// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "KeyboardShortcuts/Shortcut.h"

#include <QKeySequence>

namespace tovek {
class KeyboardLayout;
}

namespace KeyboardShortcuts {

/// The symbols of the modifiers, always in the order Control, Option, Shift, Command, Function.
QString description(tovek::KeyFlags flags);
/// The symbols of the modifiers followed by the key: its own name, or what the layout types with
/// it, capitalised, or U+FFFD.
QString description(const Shortcut &shortcut, const tovek::KeyboardLayout &layout);

/// The same of the keys of a menu item, in the one way in which this program writes keys.
QString description(const QKeySequence &sequence);

/// What a menu item compares its key with: the character of the key in lower case, or the name of
/// a special key as menus write it ("F5", "Return"). Absent when the key has neither.
std::optional<QString> keyEquivalent(const Shortcut &shortcut, const tovek::KeyboardLayout &layout);
/// The shortcut as menus of this desktop show it. Empty when the key has no key equivalent.
QKeySequence keySequence(const Shortcut &shortcut, const tovek::KeyboardLayout &layout);

/// The key of a menu item, or a shortcut in the terms of one: inside our own windows Control and
/// Super both are the command key.
struct MenuKey
{
    QString keyEquivalent;
    tovek::KeyFlags flags;

    bool operator==(const MenuKey &) const = default;
};

/// Absent for an empty key sequence and for one of several strokes.
std::optional<MenuKey> menuKey(const QKeySequence &sequence);
/// Absent when the shortcut has no key equivalent.
std::optional<MenuKey> menuKey(const Shortcut &shortcut, const tovek::KeyboardLayout &layout);
/// True when the shortcut would choose the item. An item whose key is an upper-case character
/// means Shift and the lower-case one where the shortcut has Shift.
bool isChosenBy(MenuKey item, const MenuKey &shortcut);

} // namespace KeyboardShortcuts
