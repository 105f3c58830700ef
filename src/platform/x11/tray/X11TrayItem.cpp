// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/tray/X11TrayItem.h"

#include "platform/x11/QtXcb.h"
#include "platform/x11/X11Reply.h"
#include "platform/x11/tray/X11TrayWindow.h"

#include <QGuiApplication>
#include <QScreen>

#include <cstring>

namespace tovek {

namespace {

constexpr uint32_t requestDock = 0;
constexpr const char *selection = "_NET_SYSTEM_TRAY_S0";

QByteArray stringProperty(xcb_window_t window, xcb_atom_t property)
{
    xcb_connection_t *c = QtXcb::connection();
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        c, xcb_get_property(c, false, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 64),
        nullptr));
    return reply ? QByteArray(static_cast<char *>(xcb_get_property_value(reply.get())),
                              xcb_get_property_value_length(reply.get()))
                 : QByteArray();
}

QByteArray nameOf(xcb_window_t window)
{
    return stringProperty(window, XCB_ATOM_WM_CLASS) + stringProperty(window, XCB_ATOM_WM_NAME);
}

std::vector<xcb_window_t> childrenOf(const std::vector<xcb_window_t> &windows)
{
    xcb_connection_t *c = QtXcb::connection();
    std::vector<xcb_query_tree_cookie_t> asked;
    for (const xcb_window_t window : windows)
        asked.push_back(xcb_query_tree(c, window));
    std::vector<xcb_window_t> children;
    for (const xcb_query_tree_cookie_t &cookie : asked) {
        const X11Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(c, cookie, nullptr));
        if (!tree)
            continue;
        const xcb_window_t *first = xcb_query_tree_children(tree.get());
        children.insert(children.end(), first, first + xcb_query_tree_children_length(tree.get()));
    }
    return children;
}

/// What the windows of the host's connection are called: that of the selection often has no name
/// (tint2), those that people see have one.
QByteArray programOf(xcb_window_t host)
{
    QByteArray names = nameOf(host);
    if (!names.isEmpty())
        return names;
    const uint32_t ofClient = ~xcb_get_setup(QtXcb::connection())->resource_id_mask;
    std::vector<xcb_window_t> windows = childrenOf({QtXcb::screen()->root});
    const std::vector<xcb_window_t> inFrames = childrenOf(windows);
    windows.insert(windows.end(), inFrames.begin(), inFrames.end());
    for (const xcb_window_t window : windows) {
        if ((window & ofClient) == (host & ofClient))
            names += nameOf(window);
    }
    return names;
}

/// lxqt-panel scales embedded windows and synthesises their clicks at wrong places, and KDE's
/// xembedsniproxy shows them as icons; both have an item protocol of their own. The former (1.2.1)
/// has a connection for its tray on which nothing has a name.
bool isProxy(xcb_window_t host)
{
    const QByteArray program = programOf(host);
    return program.isEmpty() || program.contains("lxqt-panel")
        || program.contains("xembedsniproxy");
}

/// Whether the host embeds windows with an alpha channel.
bool hasAlpha(xcb_window_t host)
{
    const QByteArray visual = stringProperty(host, QtXcb::atom("_NET_SYSTEM_TRAY_VISUAL"));
    if (visual.size() < 4)
        return false;
    uint32_t id = 0;
    std::memcpy(&id, visual.constData(), 4);
    for (auto d = xcb_screen_allowed_depths_iterator(QtXcb::screen()); d.rem; xcb_depth_next(&d)) {
        for (auto v = xcb_depth_visuals_iterator(d.data); v.rem; xcb_visualtype_next(&v)) {
            if (v.data->visual_id == id)
                return d.data->depth == 32;
        }
    }
    return false;
}

/// The toolkit keeps a screen's origin in native pixels and divides only its size by the scale.
QRect logicalFromNative(QRect native)
{
    for (const QScreen *screen : QGuiApplication::screens()) {
        const QPoint origin = screen->geometry().topLeft();
        const double scale = screen->devicePixelRatio();
        const QRectF whole(origin, QSizeF(screen->geometry().size()) * scale);
        if (whole.contains(native.center())) {
            return QRectF(origin + QPointF(native.topLeft() - origin) / scale,
                          QSizeF(native.size()) / scale)
                .toRect();
        }
    }
    return native;
}

} // namespace

std::unique_ptr<Tray> X11TrayItem::create()
{
    return QtXcb::connection() ? std::make_unique<X11TrayItem>() : nullptr;
}

X11TrayItem::X11TrayItem()
{
    qGuiApp->installNativeEventFilter(this);
    findHost();
}

X11TrayItem::~X11TrayItem()
{
    qGuiApp->removeNativeEventFilter(this);
}

void X11TrayItem::setVisible(bool isVisible)
{
    m_isVisible = isVisible;
    if (!isVisible)
        undock();
    else if (!m_window)
        dock();
}

void X11TrayItem::setPicture(const TrayPicture &picture)
{
    m_picture = picture;
    if (m_window)
        m_window->setPicture(picture);
}

void X11TrayItem::setToolTip(const QString &text)
{
    m_toolTip = text;
    if (m_window)
        m_window->setTitle(text);
}

QObject *X11TrayItem::dragSource()
{
    return m_window ? static_cast<QObject *>(m_window.get()) : this;
}

QRect X11TrayItem::geometry() const
{
    if (!m_window || !m_window->isEmbedded())
        return {};
    const auto native = QtXcb::geometryOnRoot(m_window->id());
    return native ? logicalFromNative(*native) : QRect();
}

bool X11TrayItem::nativeEventFilter(const QByteArray &type, void *message, qintptr *)
{
    if (type != "xcb_generic_event_t")
        return false;
    const auto *event = static_cast<xcb_generic_event_t *>(message);
    switch (event->response_type & 0x7f) {
    case XCB_CLIENT_MESSAGE: {
        const auto *client = reinterpret_cast<const xcb_client_message_event_t *>(event);
        if (client->type == QtXcb::atom("MANAGER")
            && client->data.data32[1] == QtXcb::atom(selection)) {
            hostGone();
            findHost();
        }
        break;
    }
    case XCB_REPARENT_NOTIFY: {
        const auto *reparent = reinterpret_cast<const xcb_reparent_notify_event_t *>(event);
        if (!m_window || reparent->window != m_window->id())
            break;
        if (reparent->parent == QtXcb::screen()->root) {
            // The host has died or has thrown the item out; the window would lie on the desktop.
            m_window->hide();
            QMetaObject::invokeMethod(
                this,
                [this] {
                    hostGone();
                    findHost();
                },
                Qt::QueuedConnection);
        } else if (!m_window->isEmbedded()) {
            m_window->setEmbedded();
        }
        break;
    }
    case XCB_EXPOSE:
        // The panel may have changed its colour; it makes its items paint themselves then.
        if (m_window
            && reinterpret_cast<const xcb_expose_event_t *>(event)->window == m_window->id())
            QMetaObject::invokeMethod(
                m_window.get(), [this] { m_window->look(); }, Qt::QueuedConnection);
        break;
    case XCB_DESTROY_NOTIFY: {
        const auto *destroy = reinterpret_cast<const xcb_destroy_notify_event_t *>(event);
        if (m_host && destroy->window == m_host)
            QMetaObject::invokeMethod(
                this,
                [this] {
                    hostGone();
                    findHost();
                },
                Qt::QueuedConnection);
        break;
    }
    default:
        break;
    }
    return false;
}

void X11TrayItem::findHost()
{
    if (m_host)
        return;
    const xcb_window_t owner = QtXcb::selectionOwner(QtXcb::atom(selection));
    if (owner == XCB_WINDOW_NONE)
        return;
    const uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(QtXcb::connection(), owner, XCB_CW_EVENT_MASK, &mask);
    // One that died before it was watched would be waited for without end.
    if (QtXcb::selectionOwner(QtXcb::atom(selection)) != owner)
        return;
    m_host = owner;
    m_isHostProxy = isProxy(owner);
    dock();
    if (onHostChanged)
        onHostChanged();
}

void X11TrayItem::dock()
{
    if (!m_isVisible || !m_host || m_window)
        return;
    m_window = std::make_unique<X11TrayWindow>(*this, hasAlpha(m_host));
    m_window->setTitle(m_toolTip);
    m_window->setPicture(m_picture);
    xcb_connection_t *c = QtXcb::connection();
    const uint32_t info[]{0, 1}; // protocol version; wants to be mapped
    const xcb_atom_t property = QtXcb::atom("_XEMBED_INFO");
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, m_window->id(), property, property, 32, 2, info);
    xcb_client_message_event_t request{};
    request.response_type = XCB_CLIENT_MESSAGE;
    request.format = 32;
    request.window = m_host;
    request.type = QtXcb::atom("_NET_SYSTEM_TRAY_OPCODE");
    request.data.data32[0] = XCB_CURRENT_TIME;
    request.data.data32[1] = requestDock;
    request.data.data32[2] = m_window->id();
    xcb_send_event(c, false, m_host, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<char *>(&request));
    xcb_flush(c);
}

void X11TrayItem::undock()
{
    m_window.reset();
}

void X11TrayItem::hostGone()
{
    if (!m_host)
        return;
    m_host = 0;
    undock();
    if (onHostChanged)
        onHostChanged();
}

} // namespace tovek
