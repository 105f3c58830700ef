// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/X11Connection.h"

#include <QAbstractNativeEventFilter>
#include <QPointer>
#include <QTimer>
#include <QWindow>

#include <functional>

namespace tovek {

/// The grab that brings all keys to one of our windows while the input focus of the desktop stays
/// where it is: nothing has to be given back afterwards, and no title bar changes. Main thread.
/// On a Wayland desktop the grab reaches no further than the X windows, so that the focus has to
/// move after all; the desktop moves it back when the window has gone.
class X11KeyboardHold : public QObject, private QAbstractNativeEventFilter
{
public:
    explicit X11KeyboardHold(std::shared_ptr<X11Connection> connection);
    ~X11KeyboardHold() override;

    /// For an X server that is a guest on a Wayland desktop.
    void setTakesFocus(bool takesFocus) { m_takesFocus = takesFocus; }
    bool takesFocus() const { return m_takesFocus; }
    /// Brings the keys to the window, from another one of ours too. Where another program holds
    /// the keyboard, it gets some time, and what looks like its menu one Escape; `onDenied` tells
    /// when that was not enough. The window must be mapped.
    void take(QWindow &window, std::function<void()> onDenied);
    /// To be called before the window is unmapped. A key that is still down keeps the keyboard
    /// until it comes up, for half a second at most: its release belongs to nobody else.
    void release(QWindow &window);
    /// While we have the keyboard, another program has held the mouse for a while.
    std::function<void()> onMouseHeld;

    bool holds(const QWindow &window) const { return m_hasKeyboard && m_window == &window; }

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    uint8_t grab(xcb_window_t window);
    void attempt();
    void takeFocus();
    void checkFocus();
    void sendEscape();
    void checkMouse();
    bool isMouseHeld() const;
    void ungrab();

    std::shared_ptr<X11Connection> m_connection;
    QPointer<QWindow> m_window;
    std::function<void()> m_onDenied;
    bool m_takesFocus = false;
    bool m_hasKeyboard = false;
    size_t m_attempts = 0;
    QTimer m_retry;
    size_t m_focusChecks = 0;
    QTimer m_focusCheck;
    size_t m_mouseChecks = 0;
    QTimer m_mouseCheck;
    QTimer m_lingering; ///< runs while the last key is waited for
    uint8_t m_lastKey = 0; ///< the key that went down last; 0: none
};

} // namespace tovek
