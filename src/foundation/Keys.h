// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QFlags>
#include <QString>

namespace tovek {

/// Modifier flags of a key event. The values are part of the stored form of shortcuts (through
/// their conversion in KeyboardShortcuts) and must not change.
enum class KeyFlag : quint32 {
    capsLock = 0x10000,
    shift = 0x20000,
    control = 0x40000,
    option = 0x80000, ///< Alt
    command = 0x100000, ///< Super for global shortcuts, Ctrl or Super inside our own windows
    numericPad = 0x200000,
    help = 0x400000,
    function = 0x800000,
};
Q_DECLARE_FLAGS(KeyFlags, KeyFlag)
Q_DECLARE_OPERATORS_FOR_FLAGS(KeyFlags)

/// Hardware key codes by position on the keyboard, independent of the layout. Only those that
/// rules compare with; platform/linux/KeyCodes.h maps all of them.
namespace KeyCode {
inline constexpr int returnKey = 36;
inline constexpr int tab = 48;
inline constexpr int space = 49;
inline constexpr int backspace = 51;
inline constexpr int escape = 53;
inline constexpr int keypadEnter = 76;
inline constexpr int help = 114;
inline constexpr int forwardDelete = 117;
inline constexpr int leftArrow = 123;
inline constexpr int rightArrow = 124;
inline constexpr int downArrow = 125;
inline constexpr int upArrow = 126;
inline constexpr int f12 = 111;
inline constexpr int none = -1; ///< a key that has no code of its own
} // namespace KeyCode

/// A key event inside our own windows. The characters are those of the key without Control,
/// Option and Command, but with Shift, in Latin letters whatever the layout.
struct KeyPress
{
    int keyCode = KeyCode::none;
    KeyFlags flags;
    QString charactersIgnoringModifiers;

    bool operator==(const KeyPress &) const = default;
};

} // namespace tovek
