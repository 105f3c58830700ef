// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/XConnection.h"

#include <cstring>

namespace tovek {

XConnection::XConnection(const QString &displayName)
    : m_connection(xcb_connect(displayName.toLatin1().constData(), nullptr))
{
    if (!xcb_connection_has_error(m_connection))
        m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
}

XConnection::~XConnection()
{
    xcb_disconnect(m_connection);
}

xcb_atom_t XConnection::atom(const char *name) const
{
    xcb_atom_t &known = m_atoms[name];
    if (known == XCB_ATOM_NONE) {
        const auto cookie = xcb_intern_atom(m_connection, false, uint16_t(std::strlen(name)), name);
        const XPtr<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(m_connection, cookie, nullptr));
        known = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    }
    return known;
}

QByteArray XConnection::property(xcb_window_t window, xcb_atom_t name) const
{
    return property(askForProperty(window, name));
}

xcb_get_property_cookie_t XConnection::askForProperty(xcb_window_t window, xcb_atom_t name) const
{
    return xcb_get_property(m_connection, false, window, name, XCB_ATOM_ANY, 0, 1 << 18);
}

QByteArray XConnection::property(xcb_get_property_cookie_t asked) const
{
    const XPtr<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(m_connection, asked, nullptr));
    if (!reply)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(reply.get())),
            xcb_get_property_value_length(reply.get())};
}

void XConnection::sync() const
{
    std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

} // namespace tovek
