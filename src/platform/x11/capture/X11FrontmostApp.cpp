// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/capture/X11FrontmostApp.h"

#include <QEvent>
#include <QGuiApplication>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace tovek {

namespace {

/// Who asks, in messages to the window manager: an application, not a pager.
constexpr uint32_t fromApplication = 1;
constexpr uint32_t mostClients = 4096;

/// Ordinary windows belong into the taskbar; overlays, toasts and menus never do.
bool isOrdinary(const QWindow &window)
{
    return window.isTopLevel() && !(window.flags() & Qt::BypassWindowManagerHint)
        && (window.type() == Qt::Window || window.type() == Qt::Dialog);
}

} // namespace

X11FrontmostApp::X11FrontmostApp(std::shared_ptr<X11Connection> connection, Server server)
    : m_connection(std::move(connection))
    , m_server(server)
{
    // Sees each window as it is shown for the first time; the policy holds for that one too.
    qApp->installEventFilter(this);
}

std::optional<RunningApplication> X11FrontmostApp::frontmost() const
{
    xcb_connection_t *xcb = m_connection->xcb();
    const X11Reply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
    RunningApplication application;
    if (focus && focus->focus > XCB_INPUT_FOCUS_POINTER_ROOT
        && focus->focus != m_connection->root())
        application.focus = focus->focus;
    application.window = number(m_connection->root(), X11Atom::activeWindow).value_or(0);
    if (m_server == Server::guest && !isClient(xcb_window_t(application.window)))
        return std::nullopt;
    if (!application.window)
        application.window = application.focus;
    if (application.focus == application.window)
        application.focus = 0;
    if (!application.window)
        return std::nullopt;
    application.processId = number(xcb_window_t(application.window), X11Atom::wmPid).value_or(0);
    return application;
}

std::optional<QRect> X11FrontmostApp::activeWindowFrame() const
{
    const std::optional<RunningApplication> front = frontmost();
    if (!front)
        return std::nullopt;
    xcb_connection_t *xcb = m_connection->xcb();
    xcb_generic_error_t *error = nullptr; // it may close at any moment
    // The window manager's frame is what lies on the root window itself.
    auto window = xcb_window_t(front->window);
    for (;;) {
        const X11Reply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(xcb, xcb_query_tree(xcb, window), &error));
        std::free(std::exchange(error, nullptr));
        if (!tree || window == tree->root)
            return std::nullopt;
        if (tree->parent == tree->root)
            break;
        window = tree->parent;
    }
    const X11Reply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(xcb, xcb_get_geometry(xcb, window), &error));
    std::free(std::exchange(error, nullptr));
    if (!geometry)
        return std::nullopt;
    const int border = 2 * geometry->border_width;
    return QRect(geometry->x, geometry->y, geometry->width + border, geometry->height + border)
        .marginsRemoved(drawnShadow(xcb_window_t(front->window)));
}

QMargins X11FrontmostApp::drawnShadow(xcb_window_t window) const
{
    xcb_connection_t *xcb = m_connection->xcb();
    const auto cookie = xcb_get_property(
        xcb, 0, window, m_connection->atom(X11Atom::gtkFrameExtents), XCB_ATOM_CARDINAL, 0, 4);
    xcb_generic_error_t *error = nullptr;
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(xcb, cookie, &error));
    std::free(error);
    if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) < 16)
        return {};
    const auto *extents = static_cast<const int32_t *>(xcb_get_property_value(reply.get()));
    return {extents[0], extents[2], extents[1], extents[3]}; // left, right, top, bottom there
}

void X11FrontmostApp::activate(const RunningApplication &application)
{
    const std::optional<RunningApplication> now = frontmost();
    if (now && now->window == application.window && now->focus == application.focus)
        return;
    xcb_connection_t *xcb = m_connection->xcb();
    const auto window = xcb_window_t(application.window);
    xcb_generic_error_t *error = nullptr;
    const X11Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(xcb, xcb_get_window_attributes(xcb, window), &error));
    std::free(error);
    if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
        return;
    requestActivation(window);
    // The window inside that had the keyboard; without a window manager, nobody else does this.
    const auto focus = xcb_window_t(application.focus ? application.focus : application.window);
    const auto cookie =
        xcb_set_input_focus_checked(xcb, XCB_INPUT_FOCUS_PARENT, focus, XCB_CURRENT_TIME);
    xcb_discard_reply(xcb, cookie.sequence); // it may have closed just now
    m_connection->flush();
}

void X11FrontmostApp::setActivationPolicy(ActivationPolicy policy)
{
    m_policy = policy;
    for (QWindow *window : QGuiApplication::topLevelWindows()) {
        if (window->isVisible())
            applyPolicy(*window);
    }
}

void X11FrontmostApp::bringForward(QWindow &window)
{
    const auto id = xcb_window_t(window.winId());
    if (const auto desktop = number(m_connection->root(), X11Atom::currentDesktop)) {
        sendToRoot(id, m_connection->atom(X11Atom::wmDesktop), {*desktop, fromApplication});
    }
    window.raise();
    if (hasWindowManager()) {
        requestActivation(id);
    } else if (window.isExposed()) {
        xcb_set_input_focus(m_connection->xcb(), XCB_INPUT_FOCUS_PARENT, id, XCB_CURRENT_TIME);
    } else {
        window.requestActivate();
    }
    m_connection->flush();
}

quint64 X11FrontmostApp::sharedHandle(const QWindow &window) const
{
    return window.winId();
}

bool X11FrontmostApp::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Show || !watched->isWindowType() || !m_connection->xcb())
        return false;
    auto &window = *static_cast<QWindow *>(watched);
    // Before a window is mapped, its wish is the property itself. The toolkit adds its own later.
    if (isOrdinary(window) && window.handle() && m_policy == ActivationPolicy::accessory) {
        const uint32_t states[]{m_connection->atom(X11Atom::wmStateSkipTaskbar),
                                m_connection->atom(X11Atom::wmStateSkipPager)};
        xcb_change_property(m_connection->xcb(), XCB_PROP_MODE_REPLACE,
                            xcb_window_t(window.winId()), m_connection->atom(X11Atom::wmState),
                            XCB_ATOM_ATOM, 32, 2, states);
    }
    return false;
}

void X11FrontmostApp::applyPolicy(QWindow &window) const
{
    if (isOrdinary(window) && window.handle() && m_connection->xcb())
        requestState(xcb_window_t(window.winId()), m_policy == ActivationPolicy::accessory);
}

void X11FrontmostApp::requestState(xcb_window_t window, bool isSkipped) const
{
    sendToRoot(window, m_connection->atom(X11Atom::wmState),
               {isSkipped ? 1u : 0u, m_connection->atom(X11Atom::wmStateSkipTaskbar),
                m_connection->atom(X11Atom::wmStateSkipPager), fromApplication});
    m_connection->flush();
}

void X11FrontmostApp::requestActivation(xcb_window_t window) const
{
    sendToRoot(window, m_connection->atom(X11Atom::activeWindow),
               {fromApplication, XCB_CURRENT_TIME, 0});
}

void X11FrontmostApp::sendToRoot(xcb_window_t window, xcb_atom_t type,
                                 std::array<uint32_t, 5> data) const
{
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    std::copy(data.begin(), data.end(), message.data.data32);
    xcb_send_event(m_connection->xcb(), 0, m_connection->root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&message));
}

bool X11FrontmostApp::hasWindowManager() const
{
    // The window that the property names dies with the window manager; the property does not.
    const auto check = number(m_connection->root(), X11Atom::supportingWmCheck);
    return check && number(*check, X11Atom::supportingWmCheck) == check;
}

/// Mutter (48) calls a window of its own the active one for as long as the keyboard belongs to a
/// program that the server does not see, and takes a focus that is given back to that for nobody's.
bool X11FrontmostApp::isClient(xcb_window_t window) const
{
    xcb_connection_t *xcb = m_connection->xcb();
    const auto cookie =
        xcb_get_property(xcb, 0, m_connection->root(), m_connection->atom(X11Atom::clientList),
                         XCB_ATOM_WINDOW, 0, mostClients);
    const X11Reply<xcb_get_property_reply_t> list(xcb_get_property_reply(xcb, cookie, nullptr));
    if (!list || list->format != 32)
        return false;
    const auto *first = static_cast<xcb_window_t *>(xcb_get_property_value(list.get()));
    const auto *end = first + size_t(xcb_get_property_value_length(list.get())) / sizeof *first;
    return std::find(first, end, window) != end;
}

std::optional<uint32_t> X11FrontmostApp::number(xcb_window_t window, X11Atom property) const
{
    xcb_connection_t *xcb = m_connection->xcb();
    const auto cookie = xcb_get_property(xcb, 0, window, m_connection->atom(property),
                                         XCB_GET_PROPERTY_TYPE_ANY, 0, 1);
    xcb_generic_error_t *error = nullptr;
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(xcb, cookie, &error));
    std::free(error);
    if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) < 4)
        return std::nullopt;
    return *static_cast<uint32_t *>(xcb_get_property_value(reply.get()));
}

} // namespace tovek
