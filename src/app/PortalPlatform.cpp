// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/PortalPlatform.h"

#include "app/PlatformFactory.h"
#include "foundation/Log.h"
#include "platform/Screens.h"
#include "platform/linux/SessionBus.h"
#include "platform/portal/GnomeBoundHotKeys.h"
#include "platform/portal/PortalCapturePermission.h"
#include "platform/portal/PortalHotKeys.h"
#include "platform/portal/PortalScreenGrabber.h"

namespace tovek {

namespace {

bool isGnome()
{
    const QStringList names =
        qEnvironmentVariable("XDG_CURRENT_DESKTOP").toUpper().split(QLatin1Char(':'));
    return names.contains(QStringLiteral("GNOME")) || names.contains(QStringLiteral("UNITY"));
}

std::shared_ptr<PortalBus> portalOf(EarlyPlatform &early)
{
    if (early.portal)
        return early.portal;
    // A process that takes one picture watches no bus.
    early.portal = std::make_shared<PortalBus>(early.bus ? early.bus->connection()
                                                         : QDBusConnection::sessionBus());
    if (early.bus)
        QObject::connect(early.bus.get(), &SessionBus::changed, early.portal.get(),
                         &PortalBus::setBus);
    return early.portal;
}

/// An X server on a Wayland desktop counts all screens in one unit, as the desktop's layout does.
std::vector<PortalDisplay> displaysOf(const Screens &screens)
{
    std::vector<PortalDisplay> displays;
    for (const Screen &screen : screens.all()) {
        if (screen.displayId)
            displays.push_back({*screen.displayId, screen.native, screen.native});
    }
    return displays;
}

} // namespace

bool usePortalPictures(Platform &platform, EarlyPlatform &early)
{
    const std::shared_ptr<PortalBus> bus = portalOf(early);
    if (!bus->isOffered())
        return false;
    logLine(QStringLiteral("Wayland: capturing over the desktop's portal"));
    platform.grabber = std::make_unique<PortalScreenGrabber>(
        bus, [screens = platform.screens.get()] { return displaysOf(*screens); });
    // A process for one picture has no window that could ask.
    const bool asksBefore = isGnome() && early.bus;
    platform.capturePermission = std::make_unique<PortalCapturePermission>(
        bus,
        asksBefore ? PortalCapturePermission::Asking::before
                   : PortalCapturePermission::Asking::withTheFirstPicture);
    return true;
}

std::unique_ptr<HotKeys> makePortalHotKeys(EarlyPlatform &early, const KeyboardLayout &layout)
{
    // Elsewhere a portal may offer them that no window manager listens to.
    if (!isGnome())
        return nullptr;
    if (auto keys = PortalHotKeys::create(portalOf(early), layout)) {
        logLine(QStringLiteral("Wayland: shortcuts over the desktop's portal"));
        return keys;
    }
    if (auto keys = GnomeBoundHotKeys::create(layout)) {
        logLine(QStringLiteral("Wayland: shortcuts as custom ones in GNOME's settings"));
        return keys;
    }
    return nullptr;
}

} // namespace tovek
