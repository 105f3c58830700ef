// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/capture/XWayland.h"

#include <algorithm>

namespace tovek {

bool isXWayland(const X11Connection &connection, const X11Monitors &monitors)
{
    // It names itself since version 23.1; before, it names its monitors after itself.
    constexpr char extension[] = "XWAYLAND";
    const auto cookie = xcb_query_extension(connection.xcb(), sizeof extension - 1, extension);
    const X11Reply<xcb_query_extension_reply_t> reply(
        xcb_query_extension_reply(connection.xcb(), cookie, nullptr));
    const std::vector<X11Monitor> &all = monitors.list();
    return (reply && reply->present)
        || std::any_of(all.begin(), all.end(), [&](const X11Monitor &monitor) {
               return monitor.name.startsWith(QLatin1String(extension));
           });
}

} // namespace tovek
