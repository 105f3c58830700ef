// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/WaylandConnection.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"

#include <QAbstractEventDispatcher>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QSocketNotifier>
#include <qpa/qplatformnativeinterface.h>

#include <cerrno>
#include <poll.h>

namespace tovek {

namespace {

void syncDone(void *data, wl_callback *, uint32_t)
{
    *static_cast<bool *>(data) = true;
}

/// At login a compositor may be busy for a while. What it has not told by the end of this, the
/// program would do without for as long as it runs.
constexpr auto openingLimit = std::chrono::seconds(20);

constexpr wl_callback_listener syncListener{&syncDone};

} // namespace

const wl_registry_listener WaylandConnection::registryListener{&globalAdded, &globalRemoved};

void WaylandConnection::globalAdded(void *data, wl_registry *, uint32_t name, const char *interface,
                                    uint32_t version)
{
    auto &self = *static_cast<WaylandConnection *>(data);
    const WaylandGlobal global{name, interface, version};
    self.m_globals.push_back(global);
    for (const Listener &listener : self.m_listeners)
        listener.added(global);
}

void WaylandConnection::globalRemoved(void *data, wl_registry *, uint32_t name)
{
    auto &self = *static_cast<WaylandConnection *>(data);
    const auto gone = std::find_if(self.m_globals.begin(), self.m_globals.end(),
                                   [name](const WaylandGlobal &g) { return g.name == name; });
    if (gone == self.m_globals.end())
        return;
    const WaylandGlobal global = *gone;
    self.m_globals.erase(gone);
    for (const Listener &listener : self.m_listeners)
        listener.removed(global);
}

void WaylandConnection::forget(const void *owner)
{
    std::erase_if(m_listeners, [owner](const Listener &l) { return l.owner == owner; });
}

WaylandConnection::WaylandConnection(wl_display *display, wl_event_queue *queue)
    : m_display(display)
    , m_queue(queue)
{
}

std::shared_ptr<WaylandConnection> WaylandConnection::open()
{
    wl_display *display = wl_display_connect(nullptr);
    if (!display)
        return nullptr;
    std::shared_ptr<WaylandConnection> connection(new WaylandConnection(display, nullptr));
    return connection->readGlobals() ? connection : nullptr;
}

std::shared_ptr<WaylandConnection> WaylandConnection::ofToolkit()
{
    if (!QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        return nullptr;
    auto *display = static_cast<wl_display *>(
        QGuiApplication::platformNativeInterface()->nativeResourceForIntegration("wl_display"));
    if (!display)
        return nullptr;
    std::shared_ptr<WaylandConnection> connection(
        new WaylandConnection(display, wl_display_create_queue(display)));
    return connection->readGlobals() ? connection : nullptr;
}

WaylandConnection::~WaylandConnection()
{
    m_notifier.reset();
    if (m_registry)
        wl_registry_destroy(m_registry);
    if (!m_queue)
        wl_display_disconnect(m_display);
    else if (qApp) // the toolkit takes its connection along when it goes
        wl_event_queue_destroy(m_queue);
}

bool WaylandConnection::readGlobals()
{
    auto *wrapper = static_cast<wl_display *>(wl_proxy_create_wrapper(m_display));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy *>(wrapper), m_queue);
    m_registry = wl_display_get_registry(wrapper);
    wl_proxy_wrapper_destroy(wrapper);
    wl_registry_add_listener(m_registry, &registryListener, this);
    return roundtrip(openingLimit);
}

void WaylandConnection::handleInMainLoop()
{
    Q_ASSERT(isMainThread());
    m_notifier =
        std::make_unique<QSocketNotifier>(wl_display_get_fd(m_display), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] {
        dispatch(std::chrono::milliseconds(0));
        flush();
    });
    // Requests made while other events are handled go out before the program sleeps.
    if (auto *dispatcher = QAbstractEventDispatcher::instance())
        QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, m_notifier.get(),
                         [this] { flush(); });
}

uint32_t WaylandConnection::versionOf(const char *interface) const
{
    for (const WaylandGlobal &global : m_globals) {
        if (global.interface == interface)
            return global.version;
    }
    return 0;
}

void *WaylandConnection::bindFirst(const wl_interface &interface, uint32_t version) const
{
    for (const WaylandGlobal &global : m_globals) {
        if (global.interface == interface.name)
            return bindGlobal(global, interface, version);
    }
    return nullptr;
}

void *WaylandConnection::bindGlobal(const WaylandGlobal &global, const wl_interface &interface,
                                    uint32_t version) const
{
    return wl_registry_bind(m_registry, global.name, &interface, std::min(global.version, version));
}

void WaylandConnection::flush() const
{
    if (!m_isLost)
        wl_display_flush(m_display);
}

bool WaylandConnection::waitFor(const std::function<bool()> &condition,
                                std::chrono::milliseconds limit)
{
    const QDeadlineTimer deadline(limit);
    while (!condition()) {
        const auto left = std::chrono::milliseconds(deadline.remainingTime());
        if (m_isLost || left.count() <= 0 || !dispatch(left))
            return condition();
    }
    return true;
}

bool WaylandConnection::roundtrip(std::chrono::milliseconds limit)
{
    auto *wrapper = static_cast<wl_display *>(wl_proxy_create_wrapper(m_display));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy *>(wrapper), m_queue);
    const WaylandPtr<wl_callback, wl_callback_destroy> callback(wl_display_sync(wrapper));
    wl_proxy_wrapper_destroy(wrapper);
    bool isDone = false;
    wl_callback_add_listener(callback.get(), &syncListener, &isDone);
    return waitFor([&] { return isDone; }, limit);
}

bool WaylandConnection::dispatch(std::chrono::milliseconds limit)
{
    Q_ASSERT(isMainThread());
    const auto prepare = [this] {
        return m_queue ? wl_display_prepare_read_queue(m_display, m_queue)
                       : wl_display_prepare_read(m_display);
    };
    const auto dispatchPending = [this] {
        return m_queue ? wl_display_dispatch_queue_pending(m_display, m_queue)
                       : wl_display_dispatch_pending(m_display);
    };
    if (prepare() != 0) {
        // Events are waiting already.
        if (dispatchPending() < 0)
            lose();
        return !m_isLost;
    }
    wl_display_flush(m_display);
    pollfd descriptor{wl_display_get_fd(m_display), POLLIN, 0};
    const int ready = poll(&descriptor, 1, int(limit.count()));
    if (ready <= 0) {
        wl_display_cancel_read(m_display);
        return ready == 0 || errno == EINTR;
    }
    if (wl_display_read_events(m_display) < 0 || dispatchPending() < 0)
        lose();
    return !m_isLost;
}

void WaylandConnection::lose()
{
    if (m_isLost)
        return;
    m_isLost = true;
    if (m_notifier)
        m_notifier->setEnabled(false);
    logLine(QStringLiteral("The Wayland compositor closed the connection"));
    if (onLost)
        onLost();
}

} // namespace tovek
