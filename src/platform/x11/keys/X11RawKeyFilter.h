// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"
#include "platform/x11/keys/X11Modifiers.h"

#include <QAbstractNativeEventFilter>

#include <map>

struct xcb_connection_t;

namespace tovek {

/// Offers the keys that reach this program's own windows before the toolkit sees them: while one
/// of its menus is open the toolkit holds the keyboard, and grabbed keys do not fire.
class X11RawKeyFilter : public QAbstractNativeEventFilter
{
public:
    using Handler = std::function<bool(KeyCombo combo, bool isDown)>;

    /// The connection answers which keys are down; it need not be the toolkit's.
    X11RawKeyFilter(xcb_connection_t *connection, Handler handler);
    ~X11RawKeyFilter() override;
    Q_DISABLE_COPY_MOVE(X11RawKeyFilter)

    /// Needs the application. May be called from within the handler.
    void setWatching(bool isOn, const X11Modifiers &modifiers);
    bool isWatching() const { return m_isWatching; }

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    struct Press
    {
        KeyCombo combo;
        bool isSwallowed = false;
    };

    /// A release that came while the key was up. What follows at the same instant is a repeat that
    /// was read late.
    struct Release
    {
        int keycode = 0;
        quint32 time = 0; ///< the server's, in milliseconds
        bool isSwallowed = false;
    };

    bool press(int keycode, quint16 state, quint32 time);
    bool release(int keycode, quint32 time);

    xcb_connection_t *m_connection;
    X11Modifiers m_modifiers;
    Handler m_handler;
    std::map<int, Press> m_down; ///< by keycode
    Release m_released; ///< the last one
    bool m_isWatching = false;
};

} // namespace tovek
