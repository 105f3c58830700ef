// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/capture/X11Screens.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace tovek {

namespace {

double scaleOf(const QString &name)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens) {
        if (screen->name() == name)
            return screen->devicePixelRatio();
    }
    // Not announced to the toolkit yet; or it had to invent a name for the only screen.
    return screens.isEmpty() ? 1 : screens.first()->devicePixelRatio();
}

/// The twelve numbers of a partial strut as rectangles along the edges of the desktop.
void appendPanels(std::vector<QRect> &panels, const uint32_t *strut, QRect desktop)
{
    const auto value = [strut](int i) { return int(std::min<uint32_t>(strut[i], 1 << 15)); };
    const int left = value(0), right = value(1), top = value(2), bottom = value(3);
    if (left)
        panels.emplace_back(QPoint(0, value(4)), QPoint(left - 1, value(5)));
    if (right)
        panels.emplace_back(QPoint(desktop.width() - right, value(6)),
                            QPoint(desktop.width() - 1, value(7)));
    if (top)
        panels.emplace_back(QPoint(value(8), 0), QPoint(value(9), top - 1));
    if (bottom)
        panels.emplace_back(QPoint(value(10), desktop.height() - bottom),
                            QPoint(value(11), desktop.height() - 1));
}

} // namespace

X11Screens::X11Screens(std::shared_ptr<X11Connection> connection,
                       std::shared_ptr<X11Monitors> monitors)
    : m_connection(std::move(connection))
    , m_monitors(std::move(monitors))
{
    qApp->installNativeEventFilter(this);
    connect(m_monitors.get(), &X11Monitors::changed, this, [this] {
        m_knowsPanels = false;
        if (onChanged)
            onChanged();
    });
}

X11Screens::~X11Screens()
{
    if (qApp)
        qApp->removeNativeEventFilter(this);
}

std::vector<Screen> X11Screens::all() const
{
    if (!m_knowsPanels) {
        m_panels = readPanels();
        m_knowsPanels = true;
    }
    const std::vector<X11Monitor> &monitors = m_monitors->list();
    std::vector<Screen> screens;
    QPointF origin;
    for (const X11Monitor &monitor : monitors) {
        const double scale = scaleOf(monitor.name);
        if (screens.empty())
            origin = monitor.native.topLeft() + QPointF(0, monitor.native.height() / scale);
        const QRect visible = withoutPanels(monitor.native, m_panels);
        screens.push_back({monitor.id, monitor.name,
                           frameOf(monitor.native, monitor.native, scale, origin),
                           frameOf(visible, monitor.native, scale, origin), monitor.native, scale});
    }
    return screens;
}

std::optional<Screen> X11Screens::main() const
{
    const std::vector<Screen> screens = all();
    return screens.empty() ? std::nullopt : std::optional(screens.front());
}

Point X11Screens::mouseLocation() const
{
    xcb_connection_t *connection = m_connection->xcb();
    const X11Reply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(
        connection, xcb_query_pointer(connection, m_connection->root()), nullptr));
    const std::vector<Screen> screens = all();
    if (!pointer || screens.empty())
        return {};
    const QPoint at(pointer->root_x, pointer->root_y);
    auto under = std::find_if(screens.begin(), screens.end(),
                              [at](const Screen &screen) { return screen.native.contains(at); });
    if (under == screens.end())
        under = screens.begin();
    const QPoint inside = at - under->native.topLeft();
    const double y = under->frame.maxY() - inside.y() / under->scale;
    // The top row of pixels belongs to the screen; its upper edge would not.
    return {under->frame.x + inside.x() / under->scale,
            std::min(y, std::nextafter(under->frame.maxY(), under->frame.minY()))};
}

bool X11Screens::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto *event = static_cast<xcb_property_notify_event_t *>(message);
    if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY
        && event->window == m_connection->root()
        && (event->atom == m_connection->atom(X11Atom::clientList)
            || event->atom == m_connection->atom(X11Atom::workArea)))
        m_knowsPanels = false;
    return false;
}

std::vector<QRect> X11Screens::readPanels() const
{
    xcb_connection_t *connection = m_connection->xcb();
    const auto geometry = xcb_get_geometry(connection, m_connection->root());
    const auto list =
        xcb_get_property(connection, 0, m_connection->root(),
                         m_connection->atom(X11Atom::clientList), XCB_ATOM_WINDOW, 0, 4096);
    const X11Reply<xcb_get_geometry_reply_t> root(
        xcb_get_geometry_reply(connection, geometry, nullptr));
    const X11Reply<xcb_get_property_reply_t> clients(
        xcb_get_property_reply(connection, list, nullptr));
    if (!root || !clients)
        return {};

    std::vector<xcb_get_property_cookie_t> cookies;
    const auto *windows = static_cast<xcb_window_t *>(xcb_get_property_value(clients.get()));
    for (int i = 0; i < xcb_get_property_value_length(clients.get()) / 4; ++i)
        cookies.push_back(xcb_get_property(connection, 0, windows[i],
                                           m_connection->atom(X11Atom::wmStrutPartial),
                                           XCB_ATOM_CARDINAL, 0, 12));
    std::vector<QRect> panels;
    for (const xcb_get_property_cookie_t cookie : cookies) {
        // A window may have closed meanwhile; its error is taken here and means nothing.
        xcb_generic_error_t *error = nullptr;
        const X11Reply<xcb_get_property_reply_t> strut(
            xcb_get_property_reply(connection, cookie, &error));
        std::free(error);
        if (strut && xcb_get_property_value_length(strut.get()) == 12 * 4)
            appendPanels(panels, static_cast<uint32_t *>(xcb_get_property_value(strut.get())),
                         QRect(0, 0, root->width, root->height));
    }
    return panels;
}

QRect withoutPanels(QRect monitor, const std::vector<QRect> &panels)
{
    QRect rest = monitor;
    for (const QRect &panel : panels) {
        const QRect part = panel & monitor;
        if (part.isEmpty())
            continue;
        QRect smaller = rest;
        // The strut's long side is the edge it lies along.
        if (part.width() >= part.height()) {
            if (part.top() == monitor.top())
                smaller.setTop(std::max(rest.top(), part.bottom() + 1));
            else if (part.bottom() == monitor.bottom())
                smaller.setBottom(std::min(rest.bottom(), part.top() - 1));
        } else {
            if (part.left() == monitor.left())
                smaller.setLeft(std::max(rest.left(), part.right() + 1));
            else if (part.right() == monitor.right())
                smaller.setRight(std::min(rest.right(), part.left() - 1));
        }
        if (!smaller.isEmpty())
            rest = smaller;
    }
    return rest;
}

Rect frameOf(QRect native, QRect monitor, double scale, QPointF origin)
{
    const double left = monitor.x() + (native.x() - monitor.x()) / scale;
    const double top = monitor.y() + (native.y() - monitor.y()) / scale;
    const double height = native.height() / scale;
    return {left - origin.x(), origin.y() - top - height, native.width() / scale, height};
}

} // namespace tovek
