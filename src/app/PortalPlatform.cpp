// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/PortalPlatform.h"

#include "app/PlatformFactory.h"
#include "foundation/Log.h"
#include "platform/Screens.h"
#include "platform/linux/SessionBus.h"
#include "platform/portal/PortalCapturePermission.h"
#include "platform/portal/PortalScreenGrabber.h"

namespace tovek {

namespace {

std::shared_ptr<PortalBus> makePortalBus(const EarlyPlatform &early)
{
    auto bus = std::make_shared<PortalBus>(early.bus->connection());
    QObject::connect(early.bus.get(), &SessionBus::changed, bus.get(), &PortalBus::setBus);
    return bus;
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

bool isGnome()
{
    const QStringList names =
        qEnvironmentVariable("XDG_CURRENT_DESKTOP").toUpper().split(QLatin1Char(':'));
    return names.contains(QStringLiteral("GNOME")) || names.contains(QStringLiteral("UNITY"));
}

bool usePortalPictures(Platform &platform, const EarlyPlatform &early)
{
    const auto bus = makePortalBus(early);
    if (!bus->isOffered())
        return false;
    logLine(QStringLiteral("Wayland: capturing over the desktop's portal"));
    platform.grabber = std::make_unique<PortalScreenGrabber>(
        bus, [screens = platform.screens.get()] { return displaysOf(*screens); });
    platform.capturePermission = std::make_unique<PortalCapturePermission>(
        bus,
        isGnome() ? PortalCapturePermission::Asking::before
                  : PortalCapturePermission::Asking::withTheFirstPicture);
    return true;
}

} // namespace tovek
