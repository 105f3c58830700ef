// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/OverlaySurface.h"
#include "platform/x11/capture/X11Monitors.h"
#include "platform/x11/capture/X11PixmapPool.h"
#include "platform/x11/capture/X11ScreenGrabber.h"
#include "platform/x11/overlay/X11FrameGate.h"
#include "platform/x11/overlay/X11KeyboardHold.h"
#include "platform/x11/overlay/X11OverlayCanvas.h"
#include "platform/x11/overlay/X11PointerFollower.h"
#include "platform/x11/overlay/X11Stacking.h"

#include <QTimer>

namespace tovek {

/// What the overlays of one session share.
struct X11OverlayServices
{
    std::shared_ptr<X11Connection> connection; ///< the toolkit's
    std::shared_ptr<X11Connection> drawing; ///< the same where there is no other
    std::shared_ptr<X11Monitors> monitors;
    X11KeyboardHold keyboard;
    X11Stacking stacking;
    X11PixmapPool pool;
};

/// An unmanaged, opaque window over exactly the native pixels of one monitor. The server paints
/// the frozen display as the window's background when it maps it, before the toolkit knows.
///
/// The toolkit must not paint the whole window once more behind that, which would cost more than
/// everything else at opening. Exposures therefore reach the window's widget only inside of
/// `setCovered`; see OverlaySurface for what the widget has to do.
class X11OverlaySurface : public QObject, public OverlaySurface
{
public:
    X11OverlaySurface(std::shared_ptr<X11OverlayServices> services, QWindow &window,
                      const Screen &screen, std::shared_ptr<X11FrozenDisplay> frozen);
    ~X11OverlaySurface() override;
    void orderFrontRegardless() override;
    void sendToFront() override;
    void orderOut() override;
    bool isVisible() const override { return m_isVisible; }
    void makeKey() override;
    bool isKey() const override;
    bool present(const DisplayList &list) override;
    void setCovered(const QRegion &region) override;
    void setFollowsPointer(bool isOn) override;

private:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void followMouse(const QEvent &event);
    void setUpWindow();
    bool isBackedByTheServer() const;
    void forceNativeGeometry(uint16_t alsoRaise);
    void leaveWithTheScreen();
    void unveil();
    void showFrame(const DisplayList &list);
    void showWaitingFrame();
    QRegion toNative(const QRegion &logical) const;
    QRegion toLogical(const QRegion &native) const;
    xcb_window_t id() const;

    std::shared_ptr<X11OverlayServices> m_services;
    QWindow &m_window;
    const Screen m_screen;
    std::shared_ptr<X11FrozenDisplay> m_frozen;
    std::unique_ptr<X11OverlayCanvas> m_canvas; ///< null where the server cannot draw
    X11FrameGate m_gate;
    X11PointerFollower m_pointer;
    QTimer m_nextFrame;
    std::optional<DisplayList> m_waiting; ///< came while the gate was closed
    QRegion m_covered; ///< native pixels
    bool m_isVisible = false;
    bool m_isSent = false; ///< and the toolkit does not know yet
    bool m_wantsKey = false;
    bool m_isForwarding = false;
};

class X11OverlayShell : public OverlayShell
{
public:
    X11OverlayShell(const std::shared_ptr<X11Connection> &connection,
                    std::shared_ptr<X11Monitors> monitors);
    ~X11OverlayShell() override;
    void prepare() override;
    std::unique_ptr<OverlaySurface> create(QWindow &window, const Screen &screen,
                                           std::shared_ptr<FrozenDisplay> frozen) override;

private:
    void prepareDrawing();

    std::shared_ptr<X11OverlayServices> m_services;
};

} // namespace tovek
