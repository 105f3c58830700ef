// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/WaylandConnection.h"

#include <thread>

namespace tovek {

/// While this lives, what the compositor sends on a connection is read no more often than once in
/// an interval, and at once after a rest. Each report of a mouse, of which there may be a thousand
/// a second, would otherwise wake three threads of the program, two of them the toolkit's, and that
/// costs several times what is made of it. Nothing is lost, nothing changes its order; who waits
/// for an answer of the compositor may wait for an interval longer. Main thread only.
class PacedReading
{
public:
    PacedReading(std::shared_ptr<WaylandConnection> connection, std::chrono::milliseconds interval);
    ~PacedReading();
    PacedReading(const PacedReading &) = delete;
    PacedReading &operator=(const PacedReading &) = delete;

private:
    void read(std::chrono::milliseconds interval) const;
    bool isStoppedWithin(std::chrono::nanoseconds time) const;

    std::shared_ptr<WaylandConnection> m_connection;
    wl_event_queue *m_queue; ///< nothing is ever on it
    int m_stop; ///< an eventfd
    std::thread m_thread;
};

} // namespace tovek
