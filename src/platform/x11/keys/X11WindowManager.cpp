// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/keys/X11WindowManager.h"

#include "platform/x11/X11Reply.h"

#include <cstring>

namespace tovek {

namespace {

constexpr uint32_t longestName = 64; // four bytes each

xcb_atom_t atom(xcb_connection_t *connection, const char *name)
{
    const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 1, uint16_t(std::strlen(name)), name), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

QByteArray property(xcb_connection_t *connection, xcb_window_t window, const char *name)
{
    const auto cookie = xcb_get_property(connection, 0, window, atom(connection, name),
                                         XCB_GET_PROPERTY_TYPE_ANY, 0, longestName);
    const X11Reply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply)
        return {};
    return QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                      xcb_get_property_value_length(reply.get()));
}

} // namespace

QString x11WindowManagerName(xcb_connection_t *connection, xcb_window_t root)
{
    const QByteArray check = property(connection, root, "_NET_SUPPORTING_WM_CHECK");
    xcb_window_t window = XCB_WINDOW_NONE;
    if (check.size() != sizeof window)
        return {};
    std::memcpy(&window, check.constData(), sizeof window);
    return QString::fromUtf8(property(connection, window, "_NET_WM_NAME"));
}

} // namespace tovek
