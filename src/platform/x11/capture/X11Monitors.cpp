// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/capture/X11Monitors.h"

#include "foundation/MainThread.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <utility>
#include <xcb/randr.h>

namespace tovek {

namespace {

/// Windows are configured in bursts, and hardly ever while a monitor goes.
constexpr std::chrono::milliseconds checkDelay(100);

QString atomName(xcb_connection_t *connection, xcb_get_atom_name_cookie_t cookie)
{
    const X11Reply<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(connection, cookie, nullptr));
    if (!reply)
        return {};
    return QString::fromUtf8(xcb_get_atom_name_name(reply.get()),
                             xcb_get_atom_name_name_length(reply.get()));
}

} // namespace

X11Monitors::X11Monitors(std::shared_ptr<X11Connection> connection)
    : m_connection(std::move(connection))
{
    // The toolkit has asked for RandR events on the root window already.
    qApp->installNativeEventFilter(this);
}

X11Monitors::~X11Monitors()
{
    if (qApp)
        qApp->removeNativeEventFilter(this);
}

const std::vector<X11Monitor> &X11Monitors::list() const
{
    Q_ASSERT(isMainThread());
    if (!m_isKnown) {
        m_list = query();
        m_isKnown = true;
    }
    return m_list;
}

std::vector<X11Monitor> X11Monitors::query() const
{
    xcb_connection_t *connection = m_connection->xcb();
    if (!connection)
        return {};
    const auto geometry = xcb_get_geometry(connection, m_connection->root());
    const X11Reply<xcb_get_geometry_reply_t> root(
        xcb_get_geometry_reply(connection, geometry, nullptr));
    if (!root)
        return {};
    const QRect desktop(0, 0, root->width, root->height);
    if (!m_connection->randrEvents())
        return {{m_connection->root(), QStringLiteral("screen"), desktop}};

    const auto cookie = xcb_randr_get_monitors(connection, m_connection->root(), 1);
    const X11Reply<xcb_randr_get_monitors_reply_t> reply(
        xcb_randr_get_monitors_reply(connection, cookie, nullptr));
    if (!reply) // RandR before 1.5
        return {{m_connection->root(), QStringLiteral("screen"), desktop}};

    std::vector<X11Monitor> monitors;
    std::vector<xcb_get_atom_name_cookie_t> names;
    for (auto info = xcb_randr_get_monitors_monitors_iterator(reply.get()); info.rem;
         xcb_randr_monitor_info_next(&info)) {
        const xcb_randr_monitor_info_t &monitor = *info.data;
        const QRect native = QRect(monitor.x, monitor.y, monitor.width, monitor.height) & desktop;
        if (native.isEmpty())
            continue;
        const auto at = monitor.primary ? 0 : ptrdiff_t(monitors.size());
        monitors.insert(monitors.begin() + at, {monitor.name, {}, native});
        names.insert(names.begin() + at, xcb_get_atom_name(connection, monitor.name));
    }
    for (size_t i = 0; i < monitors.size(); ++i)
        monitors[i].name = atomName(connection, names[i]);
    return monitors;
}

bool X11Monitors::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const int events = m_connection->randrEvents();
    if (!events)
        return false;
    const int type = static_cast<xcb_generic_event_t *>(message)->response_type & 0x7f;
    const auto *configured = static_cast<xcb_configure_notify_event_t *>(message);
    const bool isOnRoot = type == XCB_CONFIGURE_NOTIFY && configured->event == m_connection->root();
    // Monitors that are not outputs come and go with this event alone.
    const bool isOfRoot = isOnRoot && configured->window == m_connection->root();
    if (isOfRoot || type == events + XCB_RANDR_SCREEN_CHANGE_NOTIFY
        || type == events + XCB_RANDR_NOTIFY)
        announce();
    else if (isOnRoot)
        checkSoon();
    return false;
}

void X11Monitors::announce()
{
    Q_ASSERT(isMainThread());
    m_isKnown = false;
    // One change comes as several events; and the toolkit has to see them first.
    if (std::exchange(m_isAnnouncing, true))
        return;
    QTimer::singleShot(0, this, [this] {
        m_isAnnouncing = false;
        Q_EMIT changed();
    });
}

void X11Monitors::checkSoon()
{
    // While the root window reports its children too, the toolkit drops what it reports of itself
    // when a child's follows at once.
    if (!m_isKnown || std::exchange(m_isChecking, true))
        return;
    QTimer::singleShot(checkDelay, this, [this] {
        m_isChecking = false;
        if (m_isKnown && query() != m_list)
            announce();
    });
}

} // namespace tovek
