// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/overlay/X11SaverWatch.h"

#include "platform/x11/X11ForeignWindows.h"
#include "platform/x11/X11Reply.h"

#include <algorithm>
#include <vector>
#include <xcb/screensaver.h>

namespace tovek {

namespace {

} // namespace

X11SaverWatch::X11SaverWatch(std::shared_ptr<X11Connection> connection)
    : m_connection(std::move(connection))
{
    if (m_connection->xcb())
        xcb_prefetch_extension_data(m_connection->xcb(), &xcb_screensaver_id);
}

void X11SaverWatch::start()
{
    const xcb_query_extension_reply_t *extension =
        xcb_get_extension_data(m_connection->xcb(), &xcb_screensaver_id);
    if (!extension || !extension->present)
        return;
    m_serverEvent = extension->first_event + XCB_SCREENSAVER_NOTIFY;
    xcb_screensaver_select_input(m_connection->xcb(), m_connection->root(),
                                 XCB_SCREENSAVER_EVENT_NOTIFY_MASK);
}

void X11SaverWatch::findDaemon()
{
    xcb_connection_t *xcb = m_connection->xcb();
    if (!xcb)
        return;
    const xcb_atom_t version = m_connection->atom(X11Atom::screenSaverVersion);
    const std::vector<xcb_window_t> windows = X11ForeignWindows(xcb).all();
    std::vector<xcb_get_property_cookie_t> questions;
    questions.reserve(windows.size());
    for (const xcb_window_t window : windows)
        questions.push_back(xcb_get_property(xcb, 0, window, version, XCB_ATOM_STRING, 0, 0));
    for (size_t i = 0; i < windows.size(); ++i) {
        const X11Reply<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(xcb, questions[i], nullptr));
        if (reply && reply->type == XCB_ATOM_STRING)
            m_daemon = windows[i];
    }
    // Its commands are sent to whoever hears of its properties.
    listenToDaemon(XCB_EVENT_MASK_PROPERTY_CHANGE);
    m_connection->flush();
}

void X11SaverWatch::stop()
{
    xcb_connection_t *xcb = m_connection->xcb();
    if (m_serverEvent)
        xcb_screensaver_select_input(xcb, m_connection->root(), 0);
    listenToDaemon(XCB_EVENT_MASK_NO_EVENT);
    m_serverEvent = 0;
    m_daemon = XCB_NONE;
}

void X11SaverWatch::listenToDaemon(uint32_t events)
{
    if (m_daemon == XCB_NONE)
        return;
    // It may have gone meanwhile.
    xcb_connection_t *xcb = m_connection->xcb();
    const auto request =
        xcb_change_window_attributes_checked(xcb, m_daemon, XCB_CW_EVENT_MASK, &events);
    xcb_discard_reply(xcb, request.sequence);
}

bool X11SaverWatch::announcesBlanking(const xcb_generic_event_t &event) const
{
    const int type = event.response_type & x11EventType;
    if (m_serverEvent && type == m_serverEvent) {
        const auto &saver = reinterpret_cast<const xcb_screensaver_notify_event_t &>(event);
        return saver.state == XCB_SCREENSAVER_STATE_ON;
    }
    if (type != XCB_CLIENT_MESSAGE || m_daemon == XCB_NONE)
        return false;
    const auto &message = reinterpret_cast<const xcb_client_message_event_t &>(event);
    // Players of films tell it all the time to stay away.
    constexpr std::array blanking{X11Atom::lock, X11Atom::activate, X11Atom::suspend};
    return message.window == m_daemon && message.format == 32
        && message.type == m_connection->atom(X11Atom::screenSaver)
        && std::any_of(blanking.begin(), blanking.end(), [&](X11Atom command) {
               return message.data.data32[0] == m_connection->atom(command);
           });
}

} // namespace tovek
