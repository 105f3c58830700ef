// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/capture/XWayland.h"

#include "platform/x11/X11Connect.h"
#include "platform/x11/X11Reply.h"

#include <algorithm>
#include <xcb/randr.h>

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

std::vector<QSize> sizesOfXMonitors()
{
    const std::unique_ptr<xcb_connection_t, X11Disconnect> connection(x11Connect());
    if (xcb_connection_has_error(connection.get()))
        return {};
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data->root;
    const auto cookie = xcb_randr_get_monitors(connection.get(), root, 1);
    const X11Reply<xcb_randr_get_monitors_reply_t> reply(
        xcb_randr_get_monitors_reply(connection.get(), cookie, nullptr));
    if (!reply)
        return {};
    std::vector<QSize> sizes;
    for (auto info = xcb_randr_get_monitors_monitors_iterator(reply.get()); info.rem;
         xcb_randr_monitor_info_next(&info))
        sizes.emplace_back(info.data->width, info.data->height);
    return sizes;
}

} // namespace tovek
