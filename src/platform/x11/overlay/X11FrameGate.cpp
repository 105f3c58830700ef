// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/overlay/X11FrameGate.h"

#include "foundation/MainThread.h"

#include <algorithm>
#include <cstdlib>
#include <xcb/xcbext.h>

namespace tovek {

X11FrameGate::X11FrameGate(std::shared_ptr<X11Connection> connection,
                           std::chrono::milliseconds interval)
    : m_connection(std::move(connection))
    , m_interval(interval)
{
}

X11FrameGate::~X11FrameGate()
{
    if (m_sync && m_connection->xcb())
        xcb_discard_reply(m_connection->xcb(), *m_sync);
}

bool X11FrameGate::isOpen()
{
    Q_ASSERT(isMainThread());
    // Timers of that interval are not exact: a frame a little early must not wait for one more.
    if (m_sinceLast.isValid() && m_sinceLast.elapsed() < m_interval.count() * 3 / 4)
        return false;
    return isDrawn();
}

void X11FrameGate::framePassed(Waiting waiting)
{
    m_sinceLast.start();
    if (waiting == Waiting::here && !m_sync && m_connection->xcb())
        m_sync = xcb_get_input_focus(m_connection->xcb()).sequence;
}

std::chrono::milliseconds X11FrameGate::untilNext() const
{
    const std::chrono::milliseconds passed(m_sinceLast.isValid() ? m_sinceLast.elapsed() : 0);
    // Past its time it waits for the server, which is asked in small steps.
    return passed < m_interval ? m_interval - passed
                               : std::max(std::chrono::milliseconds(1), m_interval / 8);
}

bool X11FrameGate::isDrawn()
{
    xcb_connection_t *xcb = m_connection->xcb();
    if (!m_sync || !xcb)
        return true;
    m_connection->read();
    void *answer = nullptr;
    xcb_generic_error_t *error = nullptr;
    if (!xcb_poll_for_reply(xcb, *m_sync, &answer, &error))
        return false;
    m_sync.reset();
    std::free(answer);
    std::free(error);
    return true;
}

} // namespace tovek
