// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"
#include "platform/x11/X11Reply.h"
#include "platform/x11/keys/X11KeyEvents.h"
#include "platform/x11/keys/X11KeyGrabs.h"
#include "platform/x11/keys/X11RawKeyFilter.h"

#include <QSocketNotifier>
#include <QTimer>

#include <deque>
#include <memory>
#include <set>
#include <vector>
#include <xcb/xcb.h>

namespace tovek {

/// Passive key grabs on a connection of their own, so that keys are ready before the toolkit is.
///
/// A grab that fires takes the keyboard from the focused window, which then repaints as one
/// without focus. It is therefore let go at the press, and the release is learned from raw events.
/// A key that is held longer is grabbed again before it starts to repeat into that window; its
/// release is told a moment later, when the window looks as before.
///
/// While another program holds the keyboard (its menu is open), only raw events tell of a press;
/// they act unless the screen is locked.
class X11HotKeys : public HotKeys
{
public:
    /// Null where there is no X server. Needs no application.
    static std::unique_ptr<X11HotKeys> create();
    ~X11HotKeys() override;

    [[nodiscard]] int grab(quint32 id, KeyCombo combo) override;
    void release(quint32 id) override;
    void setWatchingRawKeys(bool isOn) override;
    bool reportsRelease() const override { return true; }
    bool isTaken(KeyCombo combo) override;
    void setWatchingForFreedKeys(bool isOn) override;
    QString likelyHolder() const override;

    /// Keys are told from the main loop from now on, those pressed since the grabs first. Needs
    /// the application.
    void startDispatching();

    /// The X server went away. Nothing is told any more.
    std::function<void()> onConnectionLost;

private:
    struct Press
    {
        quint32 id = 0;
        xcb_keycode_t keycode = 0;
        xcb_timestamp_t time = 0;
        bool isGrabbed = false; ///< we hold the keyboard for it
    };
    using Event = X11Reply<xcb_generic_event_t>;

    explicit X11HotKeys(xcb_connection_t *connection);
    void selectRawKeys();

    void takeEvents();
    void dispatchLater();
    void dispatch();
    void handle(const xcb_generic_event_t &event);
    void corePress(const xcb_key_press_event_t &event);
    void rawPress(xcb_keycode_t keycode, xcb_timestamp_t time);
    void keyReleased(xcb_keycode_t keycode, xcb_timestamp_t time, bool isCore);
    void noteStale(quint32 id, const xcb_query_keymap_reply_t &keysDown);
    void arm(quint32 id, xcb_keycode_t keycode, xcb_timestamp_t time);
    void holdKeyboard();
    void tellMayBeFree();
    void ungrabKeyboard();

    Press *findPress(xcb_keycode_t keycode);
    void tellReleased(quint32 id);

    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> m_connection;
    xcb_window_t m_root = XCB_WINDOW_NONE;
    X11KeyEvents m_keyEvents;
    X11KeyGrabs m_grabs;
    std::vector<Press> m_presses;
    std::set<xcb_keycode_t> m_stale; ///< down since before their grab; they only repeat
    std::deque<Event> m_events;
    bool m_hasNewMapping = false;
    bool m_isLost = false;
    X11RawKeyFilter m_rawKeys;
    QTimer m_holdTimer;
    QTimer m_freedTimer;
    bool m_isWatchingForFreedKeys = false;
    QObject m_context; ///< of delayed calls
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace tovek
