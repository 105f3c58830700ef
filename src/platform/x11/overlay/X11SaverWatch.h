// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/X11Connection.h"

namespace tovek {

/// Hears that the screen is about to be blanked, while overlays show: from the server's own screen
/// saver, and from the commands that xscreensaver is given. That one tries once a second to get the
/// keyboard, and tells nobody; its commands are heard before its first try. Main thread only.
class X11SaverWatch
{
public:
    explicit X11SaverWatch(std::shared_ptr<X11Connection> connection);

    void start();
    /// To be called once the overlays are up: it waits for answers of the server.
    void findDaemon();
    void stop();

    /// Whether an event of the connection says so.
    bool announcesBlanking(const xcb_generic_event_t &event) const;

private:
    void listenToDaemon(uint32_t events);

    std::shared_ptr<X11Connection> m_connection;
    int m_serverEvent = 0; ///< its number; 0 without the extension
    xcb_window_t m_daemon = XCB_NONE; ///< the window that takes xscreensaver's commands
};

} // namespace tovek
