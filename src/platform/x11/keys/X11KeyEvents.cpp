// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/keys/X11KeyEvents.h"

#include "platform/x11/X11Reply.h"

#include <utility>
#include <xcb/xinput.h>
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

namespace tovek {

X11KeyEvents::X11KeyEvents(xcb_connection_t *connection, xcb_window_t root)
    : m_connection(connection)
    , m_root(root)
{
    const auto xkbCookie = xcb_xkb_use_extension(connection, 1, 0);
    const auto inputCookie = xcb_input_xi_query_version(connection, 2, 2);
    const X11Reply<xcb_xkb_use_extension_reply_t> xkb(
        xcb_xkb_use_extension_reply(connection, xkbCookie, nullptr));
    if (xkb && xkb->supported) {
        // A key that is held sends presses only, and one release at its end.
        constexpr uint32_t flag = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
        const auto cookie =
            xcb_xkb_per_client_flags(connection, XCB_XKB_ID_USE_CORE_KBD, flag, flag, 0, 0, 0);
        xcb_discard_reply(connection, cookie.sequence);
        selectKeyMap();
    }
    // Since 2.1, raw events come whoever holds the keyboard.
    const X11Reply<xcb_input_xi_query_version_reply_t> version(
        xcb_input_xi_query_version_reply(connection, inputCookie, nullptr));
    if (version
        && std::pair<int, int>(version->major_version, version->minor_version) >= std::pair(2, 1))
        m_inputOpcode = xcb_get_extension_data(connection, &xcb_input_id)->major_opcode;
    xcb_flush(connection);
}

void X11KeyEvents::selectKeyMap()
{
    // A client that has made itself known to this extension gets no core event for a new map.
    m_mapEvent = xcb_get_extension_data(m_connection, &xcb_xkb_id)->first_event;
    xcb_xkb_select_events_details_t details{};
    details.affectNewKeyboard = XCB_XKB_NKN_DETAIL_KEYCODES;
    details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
    constexpr uint16_t map = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
    xcb_xkb_select_events_aux(m_connection, XCB_XKB_ID_USE_CORE_KBD,
                              XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY
                                  | XCB_XKB_EVENT_TYPE_MAP_NOTIFY,
                              0, 0, map, map, &details);
}

void X11KeyEvents::selectRaw(uint32_t mask)
{
    if (!m_inputOpcode || mask == m_rawMask)
        return;
    m_rawMask = mask;
    const struct
    {
        xcb_input_event_mask_t head;
        uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, mask};
    xcb_input_xi_select_events(m_connection, m_root, 1, &selection.head);
    xcb_flush(m_connection);
}

bool X11KeyEvents::isNewMap(const xcb_generic_event_t &event) const
{
    return m_mapEvent && (event.response_type & 0x7f) == m_mapEvent;
}

} // namespace tovek
