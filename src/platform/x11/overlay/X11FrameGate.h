// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/X11Connection.h"

#include <QElapsedTimer>

#include <chrono>
#include <optional>

namespace tovek {

/// Lets one frame through in each refresh of a screen, and none before the server has drawn the
/// last: a frame more would not be seen, and behind a slow server frames would pile up and show
/// the hand where it was a second ago. Main thread only.
class X11FrameGate
{
public:
    X11FrameGate(std::shared_ptr<X11Connection> connection, std::chrono::milliseconds interval);
    ~X11FrameGate();
    X11FrameGate(const X11FrameGate &) = delete;
    X11FrameGate &operator=(const X11FrameGate &) = delete;

    bool isOpen();
    /// Who waits for the server to have drawn the frame: the gate, or the caller, by a question of
    /// its own between two frames.
    enum class Waiting { here, byCaller };
    /// To be called after the requests that draw a frame; they need not have been sent.
    void framePassed(Waiting waiting);
    /// When to ask again; at least 1 ms.
    std::chrono::milliseconds untilNext() const;
    std::chrono::milliseconds interval() const { return m_interval; }

private:
    bool isDrawn();

    std::shared_ptr<X11Connection> m_connection;
    const std::chrono::milliseconds m_interval;
    QElapsedTimer m_sinceLast; ///< not valid before the first frame
    std::optional<unsigned> m_sync; ///< a request whose answer follows the last frame
};

} // namespace tovek
