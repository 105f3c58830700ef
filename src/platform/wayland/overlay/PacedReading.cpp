// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/overlay/PacedReading.h"

#include "foundation/MainThread.h"

#include <QGuiApplication>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace tovek {

PacedReading::PacedReading(std::shared_ptr<WaylandConnection> connection,
                           std::chrono::milliseconds interval)
    : m_connection(std::move(connection))
    , m_queue(wl_display_create_queue(m_connection->display()))
    , m_stop(eventfd(0, EFD_CLOEXEC))
{
    Q_ASSERT(isMainThread());
    if (m_queue && m_stop >= 0)
        m_thread = std::thread([this, interval] { read(interval); });
}

PacedReading::~PacedReading()
{
    Q_ASSERT(isMainThread());
    if (m_thread.joinable()) {
        eventfd_write(m_stop, 1);
        m_thread.join();
    }
    if (m_stop >= 0)
        close(m_stop);
    if (m_queue && qApp) // else the toolkit has closed the connection
        wl_event_queue_destroy(m_queue);
}

/// Of all who announced that they would read, the last to do so reads, and the others wait for it.
/// So it is enough to announce it, and to come late.
void PacedReading::read(std::chrono::milliseconds interval) const
{
    wl_display *display = m_connection->display();
    std::chrono::milliseconds pause{0};
    while (wl_display_prepare_read_queue(display, m_queue) == 0) {
        pollfd descriptors[]{{wl_display_get_fd(display), POLLIN, 0}, {m_stop, POLLIN, 0}};
        // First the time, then the message: woken once where many come within the interval.
        if (isStoppedWithin(pause))
            return wl_display_cancel_read(display);
        const bool isWoken = poll(descriptors, 2, -1) > 0;
        if (descriptors[1].revents)
            return wl_display_cancel_read(display);
        if (!isWoken) {
            wl_display_cancel_read(display);
            continue;
        }
        pause = interval;
        if (wl_display_read_events(display) < 0)
            return;
    }
}

bool PacedReading::isStoppedWithin(std::chrono::nanoseconds time) const
{
    if (time.count() <= 0)
        return false;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    const timespec limit{time_t(seconds.count()), long((time - seconds).count())};
    pollfd stop{m_stop, POLLIN, 0};
    return ppoll(&stop, 1, &limit, nullptr) > 0;
}

} // namespace tovek
