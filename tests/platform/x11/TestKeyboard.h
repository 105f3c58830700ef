// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"
#include "support/XConnection.h"

#include <QList>
#include <QSize>

namespace tovek {

/// The keyboard of a test's X server, pressed by position, and another program on that server.
class TestKeyboard
{
public:
    explicit TestKeyboard(const QString &displayName);
    ~TestKeyboard();

    // Positions, as evdev numbers them.
    static constexpr int control = 29;
    static constexpr int shift = 42;
    static constexpr int alt = 56;
    static constexpr int super = 125;
    static constexpr int capsLock = 58;
    static constexpr int numLock = 69;

    /// Returns when the server has dealt with it.
    void press(int evdev) { fake(evdev, true); }
    void release(int evdev) { fake(evdev, false); }
    void tap(int evdev);
    /// The modifiers, then the key.
    void press(KeyCombo combo);
    /// Whatever is down, the last one first.
    void releaseAll();
    void tap(KeyCombo combo);

    /// Another program grabs the combination, for as long as this lives.
    void holdElsewhere(int evdev, quint16 modifiers);
    /// Another program's window takes the focus. The keys that reach it are counted.
    xcb_window_t openWindow(QSize size, bool hasFocus);
    void closeWindow(xcb_window_t window);
    void grabKeyboard(xcb_window_t window);
    void ungrabKeyboard();
    int takeKeyPresses();
    void setGroup(int group);

    const XConnection &connection() const { return m_connection; }

private:
    void fake(int evdev, bool isDown);

    XConnection m_connection;
    QList<int> m_down;
};

} // namespace tovek
