// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <xcb/xcb.h>

namespace tovek {

/// What a connection hears of the keyboard beside its grabs: raw keys, whoever holds the keyboard,
/// and new key maps. A held key sends presses only, and one release at its end.
class X11KeyEvents
{
public:
    /// Asks the server; one round trip.
    X11KeyEvents(xcb_connection_t *connection, xcb_window_t root);

    /// False where the server has no raw events that come during another client's grab.
    bool hasRaw() const { return m_inputOpcode != 0; }
    uint8_t rawExtension() const { return m_inputOpcode; }
    /// Bits of XCB_INPUT_XI_EVENT_MASK that are asked for now.
    uint32_t rawMask() const { return m_rawMask; }
    void selectRaw(uint32_t mask);
    /// Whether the event tells of a new map in this extension's way.
    bool isNewMap(const xcb_generic_event_t &event) const;

private:
    void selectKeyMap();

    xcb_connection_t *m_connection;
    xcb_window_t m_root;
    uint8_t m_inputOpcode = 0; ///< 0 without raw events
    uint8_t m_mapEvent = 0; ///< 0 where only core events tell of a new map
    uint32_t m_rawMask = 0;
};

} // namespace tovek
