// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/PortalPlatform.h"

#include "app/PlatformFactory.h"
#include "foundation/Log.h"
#include "foundation/Settings.h"
#include "foundation/UserDefaults.h"
#include "platform/linux/SessionBus.h"
#include "platform/mutter/MutterScreenGrabber.h"
#include "platform/portal/GnomeBoundHotKeys.h"
#include "platform/portal/HostAppId.h"
#include "platform/portal/PortalCapturePermission.h"
#include "platform/portal/PortalHotKeys.h"
#include "platform/portal/PortalLoginItem.h"

#include <algorithm>

namespace tovek {

namespace {

bool isDesktop(std::initializer_list<QLatin1String> wanted)
{
    const QStringList names =
        qEnvironmentVariable("XDG_CURRENT_DESKTOP").toUpper().split(QLatin1Char(':'));
    return std::any_of(wanted.begin(), wanted.end(),
                       [&](QLatin1String name) { return names.contains(name); });
}

bool isGnome()
{
    return isDesktop({QLatin1String("GNOME"), QLatin1String("UNITY")});
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

/// The program that takes frames of mutter's recordings, where the settings file chooses them and
/// they can be had; else empty, with one log line that says why a choice does nothing.
QString chosenScreenCast(const PortalBus &bus)
{
    const QString key = QLatin1String(Settings::useMutterScreenCast.key);
    if (!Settings::useMutterScreenCast.in(UserDefaults(UserDefaults::standardPath())))
        return {};
    const QString program = ScreenCastFrames::program();
    if (program.isEmpty())
        logLine(key + QStringLiteral(": the program tovek-screencast is missing beside this one"));
    else if (!MutterScreenCast::isOffered(bus.connection()))
        logLine(key + QStringLiteral(": this desktop has no org.gnome.Mutter.ScreenCast"));
    else
        return program;
    return {};
}

} // namespace

bool hasPortal(EarlyPlatform &early)
{
    return portalOf(early)->isOffered();
}

bool usePortalPictures(Platform &platform, EarlyPlatform &early,
                       PortalScreenGrabber::Desktop desktop)
{
    const std::shared_ptr<PortalBus> bus = portalOf(early);
    if (!bus->isOffered())
        return false;
    if (isGnome())
        desktop.folders = EarlyPictures::standardFolders();
    const auto displays = desktop.displays;
    platform.grabber = std::make_unique<PortalScreenGrabber>(bus, std::move(desktop));
    const QString screenCast = chosenScreenCast(*bus);
    if (screenCast.isEmpty()) {
        logLine(QStringLiteral("Wayland: capturing over the desktop's portal"));
    } else {
        logLine(QStringLiteral("Wayland: capturing over mutter's ScreenCast, a private interface"));
        platform.grabber = std::make_unique<MutterScreenGrabber>(screenCast, displays,
                                                                 std::move(platform.grabber));
    }
    // A process for one picture has no window that could ask, and of a ScreenCast nobody asks.
    const bool asksBefore = isGnome() && early.bus && screenCast.isEmpty();
    platform.capturePermission = std::make_unique<PortalCapturePermission>(
        bus,
        asksBefore ? PortalCapturePermission::Asking::before
                   : PortalCapturePermission::Asking::withTheFirstPicture);
    return true;
}

std::unique_ptr<LoginItem> makePortalLoginItem(EarlyPlatform &early)
{
    if (!isInSandbox())
        return nullptr;
    return std::make_unique<PortalLoginItem>(portalOf(early), PortalLoginItem::standardNote());
}

std::unique_ptr<HotKeys> makePortalHotKeys(EarlyPlatform &early, const KeyboardLayout &layout)
{
    // Elsewhere a portal may offer them that no window manager listens to. In a sandbox there is no
    // other way.
    const bool isKde = isDesktop({QLatin1String("KDE")});
    if (!isGnome() && !isKde && !isInSandbox())
        return nullptr;
    using Desktop = PortalHotKeys::Desktop;
    const Desktop desktop = isKde ? Desktop::kde : isGnome() ? Desktop::gnome : Desktop::other;
    if (auto keys = PortalHotKeys::create(portalOf(early), layout, desktop)) {
        logLine(QStringLiteral("Wayland: shortcuts over the desktop's portal"));
        return keys;
    }
    if (auto keys = isGnome() ? GnomeBoundHotKeys::create(layout) : nullptr) {
        logLine(QStringLiteral("Wayland: shortcuts as custom ones in GNOME's settings"));
        return keys;
    }
    return nullptr;
}

} // namespace tovek
