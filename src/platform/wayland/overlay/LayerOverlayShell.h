// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/OverlaySurface.h"
#include "platform/wayland/SurfaceRole.h"
#include "platform/wayland/WaylandOutputs.h"
#include "platform/wayland/overlay/DragFollower.h"
#include "platform/wayland/overlay/LayerCanvas.h"

namespace tovek {

class LayerOverlaySurface;

/// What the overlays of one session share.
struct LayerOverlayServices
{
    using MakeRole =
        std::function<std::unique_ptr<SurfaceRole>(QWindow &, QScreen *, QSize points)>;

    MakeRole makeRole; ///< null from it where the compositor refuses
    std::shared_ptr<CanvasGlobals> canvas;
    std::shared_ptr<WaylandOutputs> outputs;
    std::function<void(uint32_t displayId)> pointerSeenOn;
    LayerOverlaySurface *key = nullptr; ///< the one with the keyboard
    bool knowsStart = false; ///< it is where the user began, and not just any that can have it
    bool hasCursors = false; ///< the toolkit has loaded its pictures of them
};

/// A surface over one output. The frozen display and what is drawn over it lie
/// below the window's own surface, which is transparent but for child widgets; the compositor puts
/// them together, and the toolkit paints nothing to open.
class LayerOverlaySurface : public QObject, public OverlaySurface
{
public:
    LayerOverlaySurface(std::shared_ptr<LayerOverlayServices> services, QWindow &window,
                        const Screen &screen, std::shared_ptr<FrozenDisplay> frozen);
    ~LayerOverlaySurface() override;
    void orderFrontRegardless() override;
    void orderOut() override;
    bool isVisible() const override { return m_isVisible; }
    void makeKey() override;
    bool isKey() const override { return m_services->key == this; }
    bool present(const DisplayList &list) override;
    void setCovered(const QRegion &region) override { m_hasChildren |= !region.isEmpty(); }
    bool liesBelow() const override { return m_canvas != nullptr; }
    void setFollowsPointer(bool isOn) override { m_drag.setOn(isOn && m_canvas); }

private:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void setUpWindow();
    void map();
    void leaveWithTheScreen();
    void checkKeyboardSoon();
    void loadCursorsSoon();

    std::shared_ptr<LayerOverlayServices> m_services;
    QWindow &m_window;
    const Screen m_screen;
    std::shared_ptr<FrozenDisplay> m_frozen;
    std::unique_ptr<SurfaceRole> m_role; ///< null where the compositor refused
    wp_viewport *m_viewport = nullptr; ///< the window's own
    wl_buffer *m_blank = nullptr;
    std::unique_ptr<LayerCanvas> m_canvas;
    DragFollower m_drag;
    bool m_isVisible = false;
    bool m_wantsKey = false;
    bool m_isForwarding = false;
    bool m_hasChildren = false; ///< child widgets have painted something, or will
    /// The toolkit takes a window of which it hears nothing for a moment for hidden. What child
    /// widgets want to paint then it keeps until it is told that all of it is to be seen again.
    bool m_mayMissPaint = false;
};

/// Overlays of the layer shell; or full-screen windows, where there is no such shell.
class LayerOverlayShell : public OverlayShell
{
public:
    using PointerSeenOn = std::function<void(uint32_t displayId)>;
    /// Null where the compositor does not offer what it takes.
    static std::unique_ptr<LayerOverlayShell> create(std::shared_ptr<WaylandOutputs> outputs,
                                                     PointerSeenOn pointerSeenOn);
    /// The same with full-screen windows.
    static std::unique_ptr<LayerOverlayShell>
    createOfWindows(std::shared_ptr<WaylandOutputs> outputs, PointerSeenOn pointerSeenOn);

    void prepare() override { }
    bool presentsBelow() const override { return true; }
    std::unique_ptr<OverlaySurface> create(QWindow &window, const Screen &screen,
                                           std::shared_ptr<FrozenDisplay> frozen) override;

private:
    static std::unique_ptr<LayerOverlayShell> createWith(LayerOverlayServices::MakeRole makeRole,
                                                         std::shared_ptr<WaylandOutputs> outputs,
                                                         PointerSeenOn pointerSeenOn);
    explicit LayerOverlayShell(std::shared_ptr<LayerOverlayServices> services)
        : m_services(std::move(services))
    {
    }

    std::shared_ptr<LayerOverlayServices> m_services;
};

} // namespace tovek
