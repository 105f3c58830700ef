// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/overlay/WaylandKeyboardHold.h"

#include "keyboard-shortcuts-inhibit-unstable-v1-client.h"
#include "platform/wayland/SurfaceRole.h"

#include <QWindow>

#include <utility>

namespace tovek {

std::unique_ptr<WaylandKeyboardHold> WaylandKeyboardHold::create()
{
    auto connection = WaylandConnection::ofToolkit();
    if (!connection || !connection->offers(zwp_keyboard_shortcuts_inhibit_manager_v1_interface.name)
        || !connection->offers(wl_seat_interface.name))
        return nullptr;
    // The constructor is private.
    return std::unique_ptr<WaylandKeyboardHold>(new WaylandKeyboardHold(std::move(connection)));
}

WaylandKeyboardHold::WaylandKeyboardHold(std::shared_ptr<WaylandConnection> connection)
    : m_connection(std::move(connection))
    , m_manager(m_connection->bind<zwp_keyboard_shortcuts_inhibit_manager_v1>(
          zwp_keyboard_shortcuts_inhibit_manager_v1_interface, 1))
    , m_seat(m_connection->bind<wl_seat>(wl_seat_interface, 1))
{
    m_connection->adopt(m_manager);
    m_connection->adopt(m_seat);
}

WaylandKeyboardHold::~WaylandKeyboardHold()
{
    WaylandKeyboardHold::hold(nullptr);
    zwp_keyboard_shortcuts_inhibit_manager_v1_destroy(m_manager);
    wl_seat_destroy(m_seat);
}

void WaylandKeyboardHold::hold(QWindow *window)
{
    if (m_inhibitor)
        zwp_keyboard_shortcuts_inhibitor_v1_destroy(std::exchange(m_inhibitor, nullptr));
    wl_surface *surface = window ? surfaceOf(*window) : nullptr;
    if (surface)
        m_inhibitor =
            zwp_keyboard_shortcuts_inhibit_manager_v1_inhibit_shortcuts(m_manager, surface, m_seat);
    m_connection->flush();
}

} // namespace tovek
