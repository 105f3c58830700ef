// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/keys/X11ScreenLock.h"

#include "platform/x11/X11ForeignWindows.h"

#include <algorithm>

namespace tovek {

bool isTopmostWindowCovering(xcb_connection_t *connection)
{
    const X11ForeignWindows foreign(connection);
    const std::vector<QRect> monitors = foreign.monitors();
    const std::vector<xcb_window_t> windows = foreign.all();
    for (auto id = windows.rbegin(); id != windows.rend(); ++id) {
        const auto window = foreign.viewable(*id);
        if (!window || !foreign.takesInput(*id))
            continue;
        if (X11ForeignWindows::covers(*window, monitors))
            return true;
        // Toolkits keep small windows off the screen, and such that only take input; notifications
        // come by themselves, even above a locker.
        const bool isOnAMonitor =
            std::any_of(monitors.begin(), monitors.end(),
                        [&](const QRect &monitor) { return monitor.intersects(window->rect); });
        if (window->isSeen && isOnAMonitor && !foreign.isOfType(*id, {"NOTIFICATION"}))
            return false;
    }
    return false;
}

} // namespace tovek
