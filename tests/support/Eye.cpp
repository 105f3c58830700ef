// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/Eye.h"

#include "support/Wait.h"

#include <QElapsedTimer>
#include <QThread>

#include <algorithm>

namespace tovek {

Eye::Eye(const QString &displayName) : m_connection(displayName) { }

QSize Eye::size() const
{
    return {m_connection.screen()->width_in_pixels, m_connection.screen()->height_in_pixels};
}

QImage Eye::look(QRect native) const
{
    const QRect part = native.isNull() ? QRect(QPoint(), size()) : native;
    const XPtr<xcb_get_image_reply_t> reply(
        xcb_get_image_reply(m_connection,
                            xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP,
                                          m_connection.root(), int16_t(part.x()), int16_t(part.y()),
                                          uint16_t(part.width()), uint16_t(part.height()), ~0u),
                            nullptr));
    if (!reply || (reply->depth != 24 && reply->depth != 32))
        return {};
    // The fourth byte may hold anything.
    const auto *from = reinterpret_cast<const QRgb *>(xcb_get_image_data(reply.get()));
    QImage seen(part.size(), QImage::Format_RGB32);
    for (int y = 0; y < part.height(); ++y, from += part.width())
        std::transform(from, from + part.width(), reinterpret_cast<QRgb *>(seen.scanLine(y)),
                       [](QRgb pixel) { return pixel | 0xff000000; });
    return seen;
}

QRgb Eye::pixel(QPoint at) const
{
    const QImage image = look(QRect(at, QSize(1, 1)));
    return image.isNull() ? 0 : image.pixel(0, 0);
}

QImage Eye::lookWhenStill(QRect native, std::chrono::milliseconds deadline) const
{
    QImage before = look(native);
    QElapsedTimer still;
    still.start();
    const auto isStill = [&] {
        QImage now = look(native);
        if (now != before) {
            before = std::move(now);
            still.restart();
        }
        return still.elapsed() >= 60;
    };
    return waitUntil(isStill, deadline) ? before : QImage();
}

QString Eye::nameIn(xcb_window_t window, const char *property, int depth) const
{
    const QByteArray bytes = m_connection.property(window, m_connection.atom(property));
    if (!bytes.isEmpty() || depth == 0)
        return QString::fromUtf8(bytes);
    const XPtr<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, window), nullptr));
    for (int index = 0; tree && index < xcb_query_tree_children_length(tree.get()); ++index) {
        const QString name =
            nameIn(xcb_query_tree_children(tree.get())[index], property, depth - 1);
        if (!name.isEmpty())
            return name;
    }
    return {};
}

std::optional<SeenWindow> Eye::see(xcb_window_t window) const
{
    const auto attributesCookie = xcb_get_window_attributes(m_connection, window);
    const auto geometryCookie = xcb_get_geometry(m_connection, window);
    const XPtr<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(m_connection, attributesCookie, nullptr));
    const XPtr<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(m_connection, geometryCookie, nullptr));
    if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE
        || attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT)
        return std::nullopt;
    SeenWindow seen;
    seen.id = window;
    seen.native = {geometry->x, geometry->y, geometry->width, geometry->height};
    seen.isUnmanaged = attributes->override_redirect;
    seen.title = nameIn(window, "WM_NAME", 1);
    // Instance and class, each with a zero byte after it.
    seen.windowClass = nameIn(window, "WM_CLASS", 1).section(QChar(0), 1, 1);
    return seen;
}

QList<SeenWindow> Eye::windows() const
{
    QList<SeenWindow> seen;
    const XPtr<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
        m_connection, xcb_query_tree(m_connection, m_connection.root()), nullptr));
    for (int index = 0; tree && index < xcb_query_tree_children_length(tree.get()); ++index) {
        if (auto window = see(xcb_query_tree_children(tree.get())[index]))
            seen.append(*window);
    }
    return seen;
}

QList<SeenWindow> Eye::overlays(const QString &windowClass) const
{
    QList<SeenWindow> found;
    for (const SeenWindow &window : windows()) {
        if (window.isUnmanaged && window.windowClass.compare(windowClass, Qt::CaseInsensitive) == 0)
            found.append(window);
        else if (!window.isUnmanaged)
            found.clear();
    }
    return found;
}

xcb_window_t Eye::activeWindow() const
{
    const QByteArray bytes =
        m_connection.property(m_connection.root(), m_connection.atom("_NET_ACTIVE_WINDOW"));
    return bytes.size() == 4 ? *reinterpret_cast<const xcb_window_t *>(bytes.constData()) : 0;
}

QString Eye::activeTitle() const
{
    const xcb_window_t active = activeWindow();
    return active ? nameIn(active, "_NET_WM_NAME", 0) : QString();
}

xcb_window_t Eye::inputFocus() const
{
    const XPtr<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    return reply ? reply->focus : 0;
}

QPoint Eye::pointer() const
{
    const XPtr<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
        m_connection, xcb_query_pointer(m_connection, m_connection.root()), nullptr));
    return reply ? QPoint(reply->root_x, reply->root_y) : QPoint();
}

} // namespace tovek
