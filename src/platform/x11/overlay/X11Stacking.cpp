// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/overlay/X11Stacking.h"

#include <QCoreApplication>

namespace tovek {

X11Stacking::X11Stacking(std::shared_ptr<X11Connection> connection)
    : m_connection(std::move(connection))
{
}

X11Stacking::~X11Stacking()
{
    if (m_connection->xcb() && !m_overlays.empty())
        setWatching(false);
}

void X11Stacking::add(xcb_window_t overlay)
{
    if (m_overlays.empty())
        setWatching(true);
    m_overlays.insert(overlay);
}

void X11Stacking::remove(xcb_window_t overlay)
{
    if (m_overlays.erase(overlay) && m_overlays.empty()) {
        m_answered.clear();
        setWatching(false);
    }
}

void X11Stacking::setWatching(bool isOn)
{
    xcb_connection_t *xcb = m_connection->xcb();
    // The toolkit has a mask of its own on the root window, which must stay.
    const X11Reply<xcb_get_window_attributes_reply_t> now(xcb_get_window_attributes_reply(
        xcb, xcb_get_window_attributes(xcb, m_connection->root()), nullptr));
    if (!now)
        return;
    const uint32_t mask = isOn ? now->your_event_mask | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY
                               : now->your_event_mask & ~XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(xcb, m_connection->root(), XCB_CW_EVENT_MASK, &mask);
    m_connection->flush();
    if (isOn)
        qApp->installNativeEventFilter(this);
    else
        qApp->removeNativeEventFilter(this);
}

bool X11Stacking::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const int type = static_cast<xcb_generic_event_t *>(message)->response_type & 0x7f;
    if (type == XCB_MAP_NOTIFY) {
        const auto *map = static_cast<xcb_map_notify_event_t *>(message);
        if (map->event == m_connection->root())
            answer(map->window);
    } else if (type == XCB_CONFIGURE_NOTIFY) {
        const auto *configure = static_cast<xcb_configure_notify_event_t *>(message);
        if (configure->event == m_connection->root()
            && m_overlays.contains(configure->above_sibling))
            answer(configure->window);
    }
    return false;
}

void X11Stacking::answer(xcb_window_t foreign)
{
    if (m_overlays.contains(foreign) || !m_answered.insert(foreign).second)
        return;
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    for (const xcb_window_t overlay : m_overlays)
        xcb_configure_window(m_connection->xcb(), overlay, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    m_connection->flush();
}

} // namespace tovek
