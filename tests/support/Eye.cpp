// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/Eye.h"

#include "support/ScreenMemory.h"
#include "support/Wait.h"

#include <QElapsedTimer>

#include <algorithm>
#include <vector>

namespace tovek {

namespace {

/// The fourth byte may hold anything.
QImage opaque(const uint32_t *from, QSize size)
{
    QImage seen(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y, from += size.width())
        std::transform(from, from + size.width(), reinterpret_cast<QRgb *>(seen.scanLine(y)),
                       [](QRgb pixel) { return pixel | 0xff000000; });
    return seen;
}

} // namespace

/// What is asked about a window. All are asked about before the first answer is read: nearly all
/// that it costs to look at windows is the way to the server and back, and others wait for it too.
struct Eye::Glance
{
    xcb_window_t window;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_get_property_cookie_t title;
    xcb_get_property_cookie_t windowClass;
};

Eye::Eye(const QString &displayName)
    : m_connection(displayName)
    , m_memory(ScreenMemory::create(m_connection))
{
}

Eye::~Eye() = default;

QSize Eye::size() const
{
    return {m_connection.screen()->width_in_pixels, m_connection.screen()->height_in_pixels};
}

QImage Eye::look(QRect native) const
{
    const QRect part = native.isNull() ? QRect(QPoint(), size()) : native;
    if (m_memory) {
        const uint32_t *shared = m_memory->read(part);
        return shared ? opaque(shared, part.size()) : QImage();
    }
    const XPtr<xcb_get_image_reply_t> reply(
        xcb_get_image_reply(m_connection,
                            xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP,
                                          m_connection.root(), int16_t(part.x()), int16_t(part.y()),
                                          uint16_t(part.width()), uint16_t(part.height()), ~0u),
                            nullptr));
    if (!reply || (reply->depth != 24 && reply->depth != 32))
        return {};
    return opaque(reinterpret_cast<const uint32_t *>(xcb_get_image_data(reply.get())), part.size());
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

QList<xcb_window_t> Eye::childrenOf(xcb_window_t window) const
{
    const XPtr<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, window), nullptr));
    if (!tree)
        return {};
    const xcb_window_t *children = xcb_query_tree_children(tree.get());
    return {children, children + xcb_query_tree_children_length(tree.get())};
}

QString Eye::firstOf(const QList<xcb_window_t> &windows, xcb_atom_t property) const
{
    std::vector<xcb_get_property_cookie_t> asked;
    for (const xcb_window_t window : windows)
        asked.push_back(m_connection.askForProperty(window, property));
    QByteArray first;
    for (const auto &cookie : asked) {
        const QByteArray bytes = m_connection.property(cookie);
        if (first.isEmpty())
            first = bytes;
    }
    return QString::fromUtf8(first);
}

std::optional<SeenWindow> Eye::see(const Glance &glance) const
{
    const XPtr<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(m_connection, glance.attributes, nullptr));
    const XPtr<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(m_connection, glance.geometry, nullptr));
    QString title = QString::fromUtf8(m_connection.property(glance.title));
    QString windowClass = QString::fromUtf8(m_connection.property(glance.windowClass));
    if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE
        || attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT)
        return std::nullopt;
    // A window manager's frame has none of its own.
    if (title.isEmpty() || windowClass.isEmpty()) {
        const QList<xcb_window_t> children = childrenOf(glance.window);
        if (title.isEmpty())
            title = firstOf(children, XCB_ATOM_WM_NAME);
        if (windowClass.isEmpty())
            windowClass = firstOf(children, XCB_ATOM_WM_CLASS);
    }
    SeenWindow seen;
    seen.id = glance.window;
    seen.native = {geometry->x, geometry->y, geometry->width, geometry->height};
    seen.isUnmanaged = attributes->override_redirect;
    seen.title = title;
    // Instance and class, each with a zero byte after it.
    seen.windowClass = windowClass.section(QChar(0), 1, 1);
    return seen;
}

QList<SeenWindow> Eye::windows() const
{
    std::vector<Glance> glances;
    for (const xcb_window_t window : childrenOf(m_connection.root())) {
        glances.push_back({window, xcb_get_window_attributes(m_connection, window),
                           xcb_get_geometry(m_connection, window),
                           m_connection.askForProperty(window, XCB_ATOM_WM_NAME),
                           m_connection.askForProperty(window, XCB_ATOM_WM_CLASS)});
    }
    QList<SeenWindow> seen;
    for (const Glance &glance : glances) {
        if (auto window = see(glance))
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
    return QString::fromUtf8(
        active ? m_connection.property(active, m_connection.atom("_NET_WM_NAME")) : QByteArray());
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
