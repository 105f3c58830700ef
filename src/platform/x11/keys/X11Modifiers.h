// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QtGlobal>

#include <optional>
#include <vector>

struct xcb_connection_t;

namespace tovek {

/// Which bits of an event's state stand for which modifier; Alt, Super and Num Lock differ from
/// keyboard map to keyboard map.
struct X11Modifiers
{
    quint16 alt = 0; ///< 0 where the map has no such key
    quint16 super = 0; ///< 0 where the map has no such key
    quint16 locks = 0; ///< Caps Lock, Num Lock and, where it is a modifier, Scroll Lock

    /// The bits of the modifiers that a shortcut stores; absent when one of them is unknown or
    /// not on the keyboard.
    std::optional<quint16> mask(quint32 modifiers) const;
    /// The modifiers that a shortcut would store; locks are none of them.
    quint32 modifiersOf(quint16 state) const;
    /// The state without locks and mouse buttons.
    quint16 withoutLocks(quint16 state) const { return state & 0xff & ~locks; }
    /// Every combination of locks, none included.
    std::vector<quint16> lockVariants() const;

    bool operator==(const X11Modifiers &) const = default;

    /// Reads the keyboard's map; two round trips.
    static X11Modifiers read(xcb_connection_t *connection);
};

} // namespace tovek
