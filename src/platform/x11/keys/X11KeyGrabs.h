// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"
#include "platform/x11/keys/X11Modifiers.h"

#include <map>
#include <xcb/xcb.h>

namespace tovek {

/// The passive grabs of one connection by id: of every key that stands for the code, with every
/// combination of lock keys.
class X11KeyGrabs
{
public:
    explicit X11KeyGrabs(xcb_connection_t *connection);

    /// Reads the keyboard's map, and grabs anew what is grabbed where the map has changed.
    void readModifiers();
    const X11Modifiers &modifiers() const { return m_modifiers; }

    /// As HotKeys::grab. All of the combination is grabbed, or nothing.
    int grab(quint32 id, KeyCombo combo);
    /// False when nothing is grabbed under the id.
    bool release(quint32 id);
    /// As HotKeys::isTaken.
    bool isTaken(KeyCombo combo);

    bool isEmpty() const { return m_grabs.empty(); }
    bool contains(quint32 id) const { return m_grabs.contains(id); }
    bool containsKey(xcb_keycode_t keycode) const;
    /// Of the keys that stand for what is grabbed under the id.
    std::vector<xcb_keycode_t> keycodes(quint32 id) const;
    /// The id of what fires for the key in this state of the modifiers.
    std::optional<quint32> find(xcb_keycode_t keycode, quint16 state) const;

private:
    struct Grab
    {
        KeyCombo combo;
        std::vector<xcb_keycode_t> keycodes;
        quint16 mask = 0;

        bool hasKey(xcb_keycode_t keycode) const;
    };

    /// Absent when the keyboard cannot type the combination.
    std::optional<Grab> resolve(KeyCombo combo) const;
    bool isOurs(KeyCombo combo) const;
    int grabKeys(const Grab &grab);
    void ungrabKeys(const Grab &grab);

    xcb_connection_t *m_connection;
    xcb_window_t m_root;
    X11Modifiers m_modifiers;
    std::map<quint32, Grab> m_grabs;
};

} // namespace tovek
