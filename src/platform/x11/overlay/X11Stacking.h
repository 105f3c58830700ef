// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/overlay/X11SaverWatch.h"

#include <QAbstractNativeEventFilter>
#include <QRect>
#include <QTimer>

#include <functional>
#include <map>
#include <set>

namespace tovek {

/// Keeps our overlays above windows that other programs put on top later (notifications, docks),
/// and what we put on top of them ourselves (toasts) above both. Each foreign window is answered
/// once, so that two programs that both insist do not flicker. A locker is told instead of
/// answered. An overlay that another program hides comes back. Watches the desktop only while an
/// overlay shows. Main thread only.
class X11Stacking : public QObject, private QAbstractNativeEventFilter
{
public:
    explicit X11Stacking(std::shared_ptr<X11Connection> connection);
    ~X11Stacking() override;
    /// With its place, in native pixels, where it stays whatever other programs ask for.
    void add(xcb_window_t overlay, QRect native);
    void remove(xcb_window_t overlay);

    /// For an X server that is a guest on a Wayland desktop: the focus moves with the desktop's own
    /// windows there, and no locker is an X program.
    void ignoreFocus() { m_ignoresFocus = true; }

    std::function<void()> onLocker;

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    void setWatching(bool isOn);
    void tellLocker();
    xcb_window_t focus() const;
    bool isFocusTaken() const;
    bool isOurs(xcb_window_t window) const;
    void cameOnTop(xcb_window_t window, bool isUnmanaged);
    void lookAgain();
    void raise(xcb_window_t window);
    void showAgain();

    bool isForgedForOverlay(const xcb_generic_event_t &event) const;
    bool undoes(const xcb_configure_notify_event_t &event);

    std::shared_ptr<X11Connection> m_connection;
    std::map<xcb_window_t, QRect> m_overlays;
    std::set<xcb_window_t> m_answered;
    QTimer m_look; ///< at the focus and for screen savers, once the overlays are up
    xcb_window_t m_focus = XCB_NONE; ///< since then
    QTimer m_doubt; ///< runs while one more look decides
    xcb_window_t m_doubtful = XCB_NONE;
    QTimer m_showAgain; ///< what another program has hidden
    X11SaverWatch m_savers;
    bool m_ignoresFocus = false;
    std::set<xcb_window_t> m_onTop; ///< ours, over the overlays
};

} // namespace tovek
