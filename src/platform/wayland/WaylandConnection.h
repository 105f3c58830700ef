// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>
#include <wayland-client.h>

class QSocketNotifier;

namespace tovek {

/// Something that the compositor offers.
struct WaylandGlobal
{
    uint32_t name = 0;
    QByteArray interface;
    uint32_t version = 0;
};

/// A connection to the compositor: one of our own beside the toolkit's, for what has no window, or
/// the toolkit's, for what belongs to one. Main thread only.
class WaylandConnection
{
public:
    /// One of our own. Works before there is an application; see `handleInMainLoop`. Null without
    /// a compositor, or with one that says nothing for twenty seconds.
    static std::shared_ptr<WaylandConnection> open();
    /// Its events are handled in the main loop from now on. Our own only; needs an application.
    void handleInMainLoop();
    /// The toolkit's. What is bound here lives on a queue that only `waitFor` handles, so that an
    /// answer can be waited for; `adopt` hands an object over to the main loop. Null where the
    /// toolkit runs on something else.
    static std::shared_ptr<WaylandConnection> ofToolkit();
    ~WaylandConnection();
    WaylandConnection(const WaylandConnection &) = delete;
    WaylandConnection &operator=(const WaylandConnection &) = delete;

    wl_display *display() const { return m_display; }
    const std::vector<WaylandGlobal> &globals() const { return m_globals; }
    bool offers(const char *interface) const { return versionOf(interface) > 0; }
    /// 0 when it is not offered.
    uint32_t versionOf(const char *interface) const;
    /// The first global of this interface, in its version but not above `version`; null when there
    /// is none. The caller destroys it.
    template <typename T>
    T *bind(const wl_interface &interface, uint32_t version) const
    {
        return static_cast<T *>(bindFirst(interface, version));
    }
    void *bindGlobal(const WaylandGlobal &global, const wl_interface &interface,
                     uint32_t version) const;

    /// An object made here whose events the main loop handles from now on.
    template <typename T>
    void adopt(T *object) const
    {
        wl_proxy_set_queue(reinterpret_cast<wl_proxy *>(object), nullptr);
    }
    /// What is made of this is handled by `waitFor` until it is adopted. The caller destroys it
    /// with wl_proxy_wrapper_destroy.
    template <typename T>
    T *waitable(T *object) const
    {
        auto *wrapper = static_cast<T *>(wl_proxy_create_wrapper(object));
        wl_proxy_set_queue(reinterpret_cast<wl_proxy *>(wrapper), m_queue);
        return wrapper;
    }
    void flush() const;
    /// Handles events until the condition holds. False at the deadline, or when the connection is
    /// lost.
    bool waitFor(const std::function<bool()> &condition, std::chrono::milliseconds limit);
    /// The compositor has dealt with everything asked so far.
    bool roundtrip(std::chrono::milliseconds limit = std::chrono::seconds(3));
    bool isLost() const { return m_isLost; }

    /// Told of what comes and goes from now on, until `forget`.
    struct Listener
    {
        const void *owner;
        std::function<void(const WaylandGlobal &)> added, removed;
    };
    void listen(Listener listener) { m_listeners.push_back(std::move(listener)); }
    void forget(const void *owner);
    /// The compositor closed the connection; nothing works from here on. Our own only.
    std::function<void()> onLost;

private:
    WaylandConnection(wl_display *display, wl_event_queue *queue);
    bool readGlobals();
    void *bindFirst(const wl_interface &interface, uint32_t version) const;
    bool dispatch(std::chrono::milliseconds limit);
    void lose();
    static void globalAdded(void *data, wl_registry *, uint32_t name, const char *interface,
                            uint32_t version);
    static void globalRemoved(void *data, wl_registry *, uint32_t name);
    static const wl_registry_listener registryListener;

    wl_display *m_display;
    wl_event_queue *m_queue; ///< null: the display's own
    wl_registry *m_registry = nullptr;
    std::vector<WaylandGlobal> m_globals;
    std::vector<Listener> m_listeners;
    std::unique_ptr<QSocketNotifier> m_notifier;
    bool m_isLost = false;
};

/// Calls the protocol's own destructor of an object with the object.
template <auto destroy>
struct WaylandDeleter
{
    template <typename T>
    void operator()(T *object) const
    {
        destroy(object);
    }
};

template <typename T, auto destroy>
using WaylandPtr = std::unique_ptr<T, WaylandDeleter<destroy>>;

} // namespace tovek
