// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/WaylandPlatform.h"

#include "app/PlatformFactory.h"
#include "app/PlatformParts.h"
#include "app/PortalPlatform.h"
#include "app/X11Platform.h"
#include "foundation/Log.h"
#include "platform/linux/CanberraSoundOutput.h"
#include "platform/linux/KGlobalAccelHotKeys.h"
#include "platform/linux/StatusNotifierItem.h"
#include "platform/linux/UserBoundHotKeys.h"
#include "platform/null/NullClipboard.h"
#include "platform/null/NullDesktop.h"
#ifdef TOVEK_WITH_WAYLAND
#include "platform/wayland/ToolkitDrawing.h"
#include "platform/wayland/capture/ExtScreenGrabber.h"
#include "platform/wayland/capture/KWinCapturePermission.h"
#include "platform/wayland/capture/KWinFrontmostApp.h"
#include "platform/wayland/capture/KWinScreenGrabber.h"
#include "platform/wayland/capture/SwayFrontmostApp.h"
#include "platform/wayland/capture/WaylandFrozenDisplay.h"
#include "platform/wayland/capture/WaylandScreens.h"
#include "platform/wayland/capture/WlrScreenGrabber.h"
#include "platform/wayland/clipboard/DataControlClipboard.h"
#include "platform/wayland/keys/SwayHotKeys.h"
#include "platform/wayland/keys/WaylandKeyboardLayout.h"
#include "platform/wayland/overlay/LayerOverlayShell.h"
#include "platform/wayland/overlay/LayerPreviewShell.h"
#include "platform/wayland/overlay/LayerToastShell.h"
#include "platform/wayland/overlay/WaylandKeyboardHold.h"
#endif

#include <algorithm>
#include <cstdlib>

namespace tovek {

std::unique_ptr<HotKeys> makeWaylandHotKeys(EarlyPlatform &early, const KeyboardLayout &layout)
{
    if (auto keys = KGlobalAccelHotKeys::create(early.bus->connection(), layout)) {
        QObject::connect(early.bus.get(), &SessionBus::changed, keys.get(),
                         &KGlobalAccelHotKeys::setBus);
        logLine(QStringLiteral("Wayland: shortcuts over KGlobalAccel"));
        return keys;
    }
#ifdef TOVEK_WITH_WAYLAND
    if (auto keys = SwayHotKeys::create(qEnvironmentVariable("SWAYSOCK"), layout)) {
        logLine(QStringLiteral("Wayland: shortcuts over sway's socket"));
        return keys;
    }
#endif
    if (auto keys = makePortalHotKeys(early, layout))
        return keys;
    logLine(QStringLiteral("Wayland: this desktop gives its keys to no program; the Shortcuts tab "
                           "tells how to give one to Tovek"));
    return std::make_unique<UserBoundHotKeys>(qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
}

#ifdef TOVEK_WITH_WAYLAND
namespace {

std::unique_ptr<ScreenGrabber>
makeWaylandGrabber(const std::shared_ptr<WaylandConnection> &connection,
                   const std::shared_ptr<WaylandOutputs> &outputs)
{
    const struct
    {
        const char *way;
        std::unique_ptr<ScreenGrabber> (*create)(std::shared_ptr<WaylandConnection>,
                                                 std::shared_ptr<WaylandOutputs>);
    } ways[] = {
        {"ext-image-copy-capture", &ExtScreenGrabber::create},
        {"wlr-screencopy", &WlrScreenGrabber::create},
        {"KWin's screenshot service", &KWinScreenGrabber::create},
    };
    for (const auto &[way, create] : ways) {
        if (auto grabber = create(connection, outputs)) {
            logLine(QStringLiteral("Wayland: capturing over %1").arg(QLatin1String(way)));
            return grabber;
        }
    }
    return nullptr;
}

std::unique_ptr<FrontmostApp> makeWaylandFrontmostApp(std::shared_ptr<WaylandOutputs> outputs)
{
    if (auto app = SwayFrontmostApp::create(qEnvironmentVariable("SWAYSOCK"), outputs))
        return app;
    if (auto app = KWinFrontmostApp::create(std::move(outputs)))
        return app;
    return std::make_unique<NullFrontmostApp>();
}

std::vector<PortalDisplay> portalDisplays(const WaylandOutputs &outputs)
{
    const std::vector<WaylandOutput> all = outputs.list();
    const std::vector<QRect> natives = nativeRects(all);
    std::vector<PortalDisplay> displays;
    for (size_t i = 0; i < all.size(); ++i)
        displays.push_back({all[i].id, all[i].layout, natives[i]});
    return displays;
}

/// False where nothing takes pictures.
bool addGrabber(Platform &platform, EarlyPlatform &early,
                const std::shared_ptr<WaylandOutputs> &outputs)
{
    auto grabber = makeWaylandGrabber(early.wayland, outputs);
    if (!grabber)
        return usePortalPictures(platform, early,
                                 {[outputs] { return portalDisplays(*outputs); },
                                  &WaylandFrozenDisplay::fromImage,
                                  {},
                                  {}});
    if (dynamic_cast<KWinScreenGrabber *>(grabber.get()))
        platform.capturePermission = std::make_unique<KWinCapturePermission>();
    platform.grabber = std::move(grabber);
    return true;
}

bool hasLayers(const WaylandConnection &connection)
{
    return connection.offers("zwlr_layer_shell_v1");
}

std::unique_ptr<OverlayShell> makeOverlayShell(const WaylandConnection &connection,
                                               std::shared_ptr<WaylandOutputs> outputs,
                                               LayerOverlayShell::PointerSeenOn pointerSeenOn)
{
    if (hasLayers(connection))
        return LayerOverlayShell::create(std::move(outputs), std::move(pointerSeenOn));
    logLine(QStringLiteral("Wayland: overlays are full-screen windows"));
    return LayerOverlayShell::createOfWindows(std::move(outputs), std::move(pointerSeenOn));
}

std::unique_ptr<Clipboard> makeWaylandClipboard(std::shared_ptr<WaylandConnection> connection)
{
    if (auto clipboard = DataControlClipboard::create(connection))
        return clipboard;
    // The desktop keeps the guest server's clipboard and its own the same.
    if (auto clipboard = makeX11Clipboard())
        return clipboard;
    if (auto clipboard = DataControlClipboard::createWithFocus(std::move(connection)))
        return clipboard;
    return std::make_unique<NullClipboard>();
}

/// Whether the X server that runs as a guest on this desktop shows the monitors' own pixels. Where
/// they are scaled, it may have fewer or more, and what it shows is resampled.
bool isXWaylandExact(const std::shared_ptr<WaylandConnection> &connection)
{
    if (!canUseX11() || !qEnvironmentVariableIsSet("DISPLAY"))
        return false;
    const WaylandOutputs outputs(connection);
    std::vector<QSize> natives;
    bool isLaidOutInPixels = true;
    for (const WaylandOutput &output : outputs.list()) {
        natives.push_back(output.native);
        isLaidOutInPixels = isLaidOutInPixels && output.layout.size() == output.native;
    }
    if (isLaidOutInPixels)
        return true;
    const std::vector<QSize> shown = x11MonitorSizes();
    return std::is_permutation(natives.begin(), natives.end(), shown.begin(), shown.end());
}

} // namespace

bool addWaylandDesktop(Platform &platform, EarlyPlatform &early)
{
    const std::shared_ptr<WaylandConnection> &connection = early.wayland;
    if (!connection)
        return false;
    // Where nobody else makes the windows' title bars, the toolkit does, but not without OpenGL.
    if (connection->offers("zxdg_decoration_manager_v1"))
        keepToShmBuffers();
    const auto outputs = std::make_shared<WaylandOutputs>(connection);
    auto screens = std::make_unique<WaylandScreens>(outputs);
    auto overlayShell =
        makeOverlayShell(*connection, outputs, [screens = screens.get()](uint32_t displayId) {
            screens->pointerSeenOn(displayId);
        });
    if (!overlayShell || !addGrabber(platform, early, outputs))
        return false;
    platform.screens = std::move(screens);
    platform.overlayShell = std::move(overlayShell);
    platform.frontmostApp = makeWaylandFrontmostApp(outputs);
    platform.clipboard = makeWaylandClipboard(connection);
    platform.toastShell = LayerToastShell::create(connection, outputs);
    platform.previewShell = LayerPreviewShell::create(*platform.screens);
    // Without layers it is mutter, which would ask the user first.
    if (hasLayers(*connection))
        platform.keyboardHold = WaylandKeyboardHold::create();
    platform.soundOutput = std::make_unique<CanberraSoundOutput>([] { return true; });
    // Only the panel can put the menu where the item is.
    platform.tray = onBus<StatusNotifierItem>(*early.bus, StatusNotifierItem::Menu::ofHost);
    std::atexit(&waitForUnfinished);
    connection->onLost = &exitUnfinished;
    connection->handleInMainLoop();
    if (auto *hotKeys = dynamic_cast<SwayHotKeys *>(platform.hotKeys.get()))
        hotKeys->startDispatching();
    if (auto *layout = dynamic_cast<WaylandKeyboardLayout *>(platform.keyboardLayout.get()))
        layout->startDispatching();
    return true;
}

bool addWaylandCapture(Platform &platform, EarlyPlatform &early)
{
    if (!early.wayland)
        return false;
    const auto outputs = std::make_shared<WaylandOutputs>(early.wayland);
    if (!addGrabber(platform, early, outputs))
        return false;
    platform.screens = std::make_unique<WaylandScreens>(outputs);
    platform.frontmostApp = makeWaylandFrontmostApp(outputs);
    early.wayland->handleInMainLoop();
    return true;
}

bool openWaylandKeyboard(EarlyPlatform &early)
{
    auto layout = early.wayland ? WaylandKeyboardLayout::create() : nullptr;
    if (!layout)
        return false;
    early.hotKeys = makeWaylandHotKeys(early, *layout);
    early.keyboardLayout = std::move(layout);
    return true;
}

std::shared_ptr<WaylandConnection> openWayland(EarlyPlatform &early)
{
    auto connection = WaylandConnection::open();
    if (!connection || hasLayers(*connection))
        return connection;
    // Windows of the guest server come without an animation, and lie where they are put.
    const bool hasWindows = connection->offers("xdg_wm_base") && connection->offers("wp_viewporter")
        && connection->offers("wl_subcompositor");
    return hasWindows && hasPortal(early) && !isXWaylandExact(connection) ? connection : nullptr;
}
#else
bool addWaylandDesktop(Platform &, EarlyPlatform &)
{
    return false;
}

bool addWaylandCapture(Platform &, EarlyPlatform &)
{
    return false;
}

bool openWaylandKeyboard(EarlyPlatform &)
{
    return false;
}

std::shared_ptr<WaylandConnection> openWayland(EarlyPlatform &)
{
    return nullptr;
}
#endif

} // namespace tovek
