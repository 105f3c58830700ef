// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/X11Platform.h"

#include "app/Environment.h"
#include "app/PlatformFactory.h"
#include "app/PlatformParts.h"
#include "app/PortalPlatform.h"
#include "app/WaylandPlatform.h"
#include "foundation/Log.h"
#include "platform/FirstTray.h"
#include "platform/linux/CanberraSoundOutput.h"
#include "platform/linux/DBusFileRevealer.h"
#include "platform/linux/StatusNotifierItem.h"
#ifdef TOVEK_WITH_X11
#include "platform/x11/X11ActivationToken.h"
#include "platform/x11/X11Resources.h"
#include "platform/x11/capture/X11CapturePermission.h"
#include "platform/x11/capture/X11FrontmostApp.h"
#include "platform/x11/capture/X11GrowingDisplay.h"
#include "platform/x11/capture/X11ScreenGrabber.h"
#include "platform/x11/capture/X11Screens.h"
#include "platform/x11/capture/XWayland.h"
#include "platform/x11/clipboard/X11Clipboard.h"
#include "platform/x11/keys/X11HotKeys.h"
#include "platform/x11/keys/X11KeyboardLayout.h"
#include "platform/x11/overlay/X11OverlaySurface.h"
#include "platform/x11/overlay/X11ToastShell.h"
#include "platform/x11/tray/X11DensityGuard.h"
#include "platform/x11/tray/X11TrayItem.h"
#include "platform/x11/tray/XSettings.h"
#endif

#include <QCoreApplication>

#include <algorithm>
#include <cstdlib>

namespace tovek {

#ifdef TOVEK_WITH_X11
namespace {

void exitWithTheServer()
{
    logLine(QStringLiteral("The X server went away"));
    exitUnfinished();
}

/// An X server on a Wayland desktop counts all screens in one unit, as the desktop's layout does.
std::vector<PortalDisplay> portalDisplays(const Screens &screens)
{
    std::vector<PortalDisplay> displays;
    for (const Screen &screen : screens.all()) {
        if (screen.displayId)
            displays.push_back({*screen.displayId, screen.native, screen.native});
    }
    return displays;
}

/// What takes pictures. Null where the session is not one of X11.
std::shared_ptr<X11Connection> addX11Screens(Platform &platform, EarlyPlatform &early,
                                             std::shared_ptr<X11Monitors> &monitors)
{
    const std::shared_ptr<X11Connection> connection = X11Connection::create();
    if (!connection)
        return nullptr;
    monitors = std::make_shared<X11Monitors>(connection);
    platform.screens = std::make_unique<X11Screens>(connection, monitors);
    const bool isGuest = isXWayland(*connection, *monitors);
    using Server = X11FrontmostApp::Server;
    platform.frontmostApp =
        std::make_unique<X11FrontmostApp>(connection, isGuest ? Server::guest : Server::own);
    const auto displays = [screens = platform.screens.get()] { return portalDisplays(*screens); };
    const auto frozen = [connection](const QImage &image) {
        // A guest may have gone while the desktop was taking the picture.
        return connection->xcb() ? X11FrozenDisplay::fromImage(connection, image) : nullptr;
    };
    const auto growing = [connection](QSize size) -> std::unique_ptr<GrowingDisplay> {
        return X11GrowingDisplay::create(connection, size);
    };
    if (isGuest && usePortalPictures(platform, early, {displays, frozen, growing, {}}))
        return connection;
    platform.grabber = std::make_unique<X11ScreenGrabber>(connection, monitors);
    platform.capturePermission =
        isGuest ? refuseToCapture() : std::make_unique<X11CapturePermission>();
    return connection;
}

/// The toolkit may be the first to miss its server. It calls exit by itself then; newer ones
/// (Qt 6.11) quit as if somebody had asked for it.
void leaveInOrderWithout(const std::shared_ptr<X11Connection> &server)
{
    std::atexit(&waitForUnfinished);
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, [server] {
        if (!server->xcb() || xcb_connection_has_error(server->xcb()))
            exitWithTheServer();
    });
}

} // namespace

bool canUseX11()
{
    return true;
}

double x11ServersDotsPerInch()
{
    return std::max(x11DotsPerInch().value_or(0), publishedDotsPerInch().value_or(0));
}

std::vector<QSize> x11MonitorSizes()
{
    return sizesOfXMonitors();
}

std::unique_ptr<Clipboard> makeX11Clipboard()
{
    return X11Clipboard::create();
}

bool openX11Keyboard(EarlyPlatform &early)
{
    auto layout = X11KeyboardLayout::create();
    if (layout && isWaylandSession()) {
        // The X server is a guest there, and sees the keys of its own windows only.
        early.hotKeys = makeWaylandHotKeys(early, *layout);
        early.keyboardLayout = std::move(layout);
        return true;
    }
    auto hotKeys = X11HotKeys::create();
    if (!hotKeys || !layout)
        return false;
    hotKeys->onConnectionLost = &exitWithTheServer;
    early.hotKeys = std::move(hotKeys);
    early.keyboardLayout = std::move(layout);
    return true;
}

bool addX11Desktop(Platform &platform, EarlyPlatform &early)
{
    std::shared_ptr<X11Monitors> monitors;
    const std::shared_ptr<X11Connection> connection = addX11Screens(platform, early, monitors);
    auto clipboard = X11Clipboard::create();
    auto *layout = dynamic_cast<X11KeyboardLayout *>(platform.keyboardLayout.get());
    if (auto *revealer = dynamic_cast<DBusFileRevealer *>(platform.fileRevealer.get()))
        revealer->newActivationToken = &newX11ActivationToken;
    if (!connection || !clipboard || !layout)
        return false;
    platform.overlayShell = std::make_unique<X11OverlayShell>(connection, monitors);
    platform.clipboard = std::move(clipboard);
    platform.toastShell = X11ToastShell::create();
    platform.soundOutput = std::make_unique<CanberraSoundOutput>(&XSettings::areEventSoundsEnabled);
    // The area of the X server first: it alone lets a thumbnail be dragged out.
    std::vector<std::unique_ptr<Tray>> trays;
    trays.push_back(X11TrayItem::create());
    trays.push_back(onBus<StatusNotifierItem>(*early.bus));
    platform.tray = std::make_unique<FirstTray>(std::move(trays));
    leaveInOrderWithout(connection);
    new X11DensityGuard(&isPossibleDensity, qApp);
    if (auto *hotKeys = dynamic_cast<X11HotKeys *>(platform.hotKeys.get()))
        hotKeys->startDispatching();
    layout->startDispatching();
    return true;
}

bool addX11Capture(Platform &platform, EarlyPlatform &early)
{
    std::shared_ptr<X11Monitors> monitors;
    return addX11Screens(platform, early, monitors) != nullptr;
}
#else
bool canUseX11()
{
    return false;
}

double x11ServersDotsPerInch()
{
    return 0;
}

std::vector<QSize> x11MonitorSizes()
{
    return {};
}

std::unique_ptr<Clipboard> makeX11Clipboard()
{
    return nullptr;
}

bool openX11Keyboard(EarlyPlatform &)
{
    return false;
}

bool addX11Desktop(Platform &, EarlyPlatform &)
{
    return false;
}

bool addX11Capture(Platform &, EarlyPlatform &)
{
    return false;
}
#endif

} // namespace tovek
