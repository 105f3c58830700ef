// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/capture/X11Pixmap.h"

namespace tovek {

X11Pixmap::X11Pixmap(std::shared_ptr<X11Connection> connection, QSize size)
    : m_connection(std::move(connection))
    , m_size(size)
{
    xcb_connection_t *xcb = m_connection->xcb();
    m_id = xcb_generate_id(xcb);
    m_creation = xcb_create_pixmap_checked(xcb, m_connection->screen().root_depth, m_id,
                                           m_connection->root(), uint16_t(size.width()),
                                           uint16_t(size.height()));
}

X11Pixmap::~X11Pixmap()
{
    if (!m_connection->xcb())
        return;
    if (error().isEmpty())
        xcb_free_pixmap(m_connection->xcb(), m_id);
}

QString X11Pixmap::error()
{
    if (m_creation && m_connection->xcb()) {
        const X11Reply<xcb_generic_error_t> failure(
            xcb_request_check(m_connection->xcb(), *m_creation));
        m_creation.reset();
        if (failure)
            m_error = x11ErrorText(*failure);
    }
    return m_error;
}

void x11Copy(const X11Connection &connection, xcb_drawable_t from, xcb_drawable_t to, QRect rect,
             QPoint at)
{
    xcb_connection_t *xcb = connection.xcb();
    const auto cookie = xcb_copy_area_checked(
        xcb, from, to, connection.snapshotGc(), int16_t(rect.x()), int16_t(rect.y()),
        int16_t(at.x()), int16_t(at.y()), uint16_t(rect.width()), uint16_t(rect.height()));
    xcb_discard_reply(xcb, cookie.sequence);
}

} // namespace tovek
