// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/X11Connection.h"

#include <QRect>

namespace tovek {

/// A drawable of the root's depth in the server; freed with the object. Main thread only.
class X11Pixmap
{
public:
    X11Pixmap(std::shared_ptr<X11Connection> connection, QSize size);
    ~X11Pixmap();
    X11Pixmap(const X11Pixmap &) = delete;
    X11Pixmap &operator=(const X11Pixmap &) = delete;

    xcb_pixmap_t id() const { return m_id; }
    QSize size() const { return m_size; }
    /// A readable reason when the server refused; empty when the pixmap exists. The first call
    /// waits for the server's answer, unless it has come already.
    QString error();

private:
    std::shared_ptr<X11Connection> m_connection;
    xcb_pixmap_t m_id = 0;
    QSize m_size;
    std::optional<xcb_void_cookie_t> m_creation;
    QString m_error;
};

/// Copies a rectangle, windows together with what lies on them. What the server says about it is
/// not asked for: a drawable that could not be made has told so itself.
void x11Copy(const X11Connection &connection, xcb_drawable_t from, xcb_drawable_t to, QRect rect,
             QPoint at);

} // namespace tovek
