// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/X11Connection.h"

#include <QPoint>
#include <QTimer>

#include <chrono>
#include <functional>
#include <optional>
#include <xcb/xinput.h>

namespace tovek {

/// Spares the toolkit the moves of the mouse in a window, of which some report a thousand a
/// second, and its way takes two threads and several times the processor time of the drawing.
/// Instead, the server is asked where the pointer is as often as the screen can show it. Presses,
/// releases and keys still take the toolkit's way, and keep their order. Main thread only.
class X11PointerFollower : public QObject
{
public:
    /// `interval` lies between two places of the pointer that are told; `asking` is where the
    /// server is asked for them.
    X11PointerFollower(std::shared_ptr<X11Connection> toolkit,
                       std::shared_ptr<X11Connection> asking, std::chrono::milliseconds interval);
    ~X11PointerFollower() override;

    /// The toolkit hears no moves in the window from the next turn of the event loop on, until
    /// `stop`.
    void start(xcb_window_t window);
    void stop();
    /// As `stop`. Where the pointer is by then, of which the toolkit has not heard: a mouse that
    /// moved before and rests now is not heard of for a long time. Absent while a button is held.
    std::optional<QPoint> giveBack();

    void pressed();
    /// True when this ends what `pressed` began, and the place of the release is yet to be told.
    bool released();
    /// Between the two.
    bool isPressed() const { return m_tick.isActive(); }
    /// Tells where the pointer is now, if that is new and the button is held.
    void catchUp();

    /// The pointer was moved with the button held. Native pixels of the window, y down.
    std::function<void(QPoint at)> onMoved;

private:
    using InputMasks = X11Reply<xcb_input_xi_get_selected_events_reply_t>;
    void takeFromToolkit();
    void select(uint32_t inputFilter, uint32_t coreFilter);

    std::shared_ptr<X11Connection> m_toolkit;
    std::shared_ptr<X11Connection> m_asking;
    QTimer m_tick;
    xcb_window_t m_window = 0; ///< 0: stopped
    InputMasks m_inputEvents; ///< what the toolkit listens to; null while it hears everything
    uint32_t m_coreEvents = 0; ///< the same in the older way
    std::optional<QPoint> m_last;
};

} // namespace tovek
