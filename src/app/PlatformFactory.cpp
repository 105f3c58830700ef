// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/PlatformFactory.h"

#include "app/PlatformParts.h"
#include "app/PortalPlatform.h"
#include "app/WaylandPlatform.h"
#include "app/X11Platform.h"
#include "foundation/Log.h"
#include "platform/linux/AutostartLoginItem.h"
#include "platform/linux/DBusFileRevealer.h"
#include "platform/linux/DBusLockSignals.h"
#include "platform/linux/DBusNotifications.h"
#include "platform/linux/DBusSingleInstance.h"
#include "platform/linux/DesktopColors.h"
#include "platform/linux/DesktopShortcuts.h"
#include "platform/linux/QtClock.h"
#include "platform/linux/SessionBus.h"
#include "platform/linux/TesseractRecognizer.h"
#include "platform/linux/UnreadErrors.h"
#include "platform/null/NullClipboard.h"
#include "platform/null/NullDesktop.h"
#include "platform/null/NullKeyboard.h"
#include "platform/portal/GnomeBindings.h"
#include "platform/portal/PortalBus.h"

namespace tovek {

namespace {

bool isWithoutDesktop()
{
    return qEnvironmentVariable("TOVEK_PLATFORM") == QLatin1String("null");
}

void addNullDesktop(Platform &platform)
{
    platform.screens = std::make_unique<NullScreens>();
    platform.grabber = std::make_unique<NullScreenGrabber>();
    platform.overlayShell = std::make_unique<NullOverlayShell>();
    platform.frontmostApp = std::make_unique<NullFrontmostApp>();
    platform.clipboard = std::make_unique<NullClipboard>();
}

} // namespace

EarlyPlatform::EarlyPlatform() = default;
EarlyPlatform::~EarlyPlatform() = default;
EarlyPlatform::EarlyPlatform(EarlyPlatform &&) noexcept = default;

QString missingDisplay()
{
    for (const char *variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
        if (qEnvironmentVariableIsSet(variable))
            return {};
    }
    return QStringLiteral("No display: neither DISPLAY nor WAYLAND_DISPLAY is set");
}

void tellUnreadError(const QString &error)
{
    if (areErrorsUnread())
        notifyOfError(error);
}

EarlyPlatform makeEarlyPlatform()
{
    EarlyPlatform early;
    early.bus = std::make_unique<SessionBus>();
    auto instance = std::make_unique<DBusSingleInstance>();
    QObject::connect(early.bus.get(), &SessionBus::changed, instance.get(),
                     &DBusSingleInstance::setBus);
    early.singleInstance = std::move(instance);
    return early;
}

void chooseToolkit(EarlyPlatform &early)
{
    // People set it to Wayland for all their programs; that is no reason to leave it to the
    // toolkit.
    const QString wanted = qEnvironmentVariable("QT_QPA_PLATFORM");
    if (!isWaylandSession() || !(wanted.isEmpty() || wanted.startsWith(QLatin1String("wayland"))))
        return;
    early.hasChosenToolkit = wanted.isEmpty();
    early.wayland = openWayland(early);
    const bool hasXWayland = qEnvironmentVariableIsSet("DISPLAY");
    if (early.wayland) {
        // Windows above all others are ours to make; see SurfaceRole.
        qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
        if (wanted.isEmpty())
            qputenv("QT_QPA_PLATFORM", hasXWayland ? "wayland;xcb" : "wayland");
    } else if (hasXWayland && wanted.isEmpty()) {
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
}

bool isToolkitOutdated(EarlyPlatform &early)
{
    return early.hasChosenToolkit && (openWayland(early) != nullptr) != (early.wayland != nullptr);
}

void forgetToolkit(const EarlyPlatform &early)
{
    if (early.hasChosenToolkit)
        qunsetenv("QT_QPA_PLATFORM");
}

double statedDotsPerInch(const EarlyPlatform &early)
{
    return early.wayland || isWithoutDesktop() ? 0 : x11ServersDotsPerInch();
}

void openKeyboard(EarlyPlatform &early)
{
    if (!isWithoutDesktop() && (openWaylandKeyboard(early) || openX11Keyboard(early)))
        return;
    early.hotKeys = std::make_unique<NullHotKeys>();
    early.keyboardLayout = std::make_unique<NullKeyboardLayout>();
}

Platform makeCapturePlatform(EarlyPlatform &early)
{
    Platform platform;
    if (!isWithoutDesktop()
        && (addWaylandCapture(platform, early) || addX11Capture(platform, early)))
        return platform;
    addNullDesktop(platform);
    if (isWaylandSession())
        platform.capturePermission = refuseToCapture();
    return platform;
}

QString removeShortcuts()
{
    return GnomeBindings::areAvailable() ? GnomeBindings::set({}) : QString();
}

std::unique_ptr<TextRecognizer> makeTextRecognizer()
{
#ifdef TOVEK_WITH_TESSERACT
    return std::make_unique<TesseractRecognizer>();
#else
    return nullptr;
#endif
}

Platform makePlatform(EarlyPlatform &early)
{
    early.bus->startWatching();
    Platform platform;
    platform.clock = std::make_unique<QtClock>();
    platform.hotKeys = std::move(early.hotKeys);
    platform.keyboardLayout = std::move(early.keyboardLayout);
    platform.loginItem = makePortalLoginItem(early);
    if (!platform.loginItem)
        platform.loginItem = std::make_unique<AutostartLoginItem>(
            AutostartLoginItem::standardFolder(), AutostartLoginItem::standardProgram());
    platform.systemShortcuts = std::make_unique<DesktopShortcuts>(
        qEnvironmentVariable("XDG_CURRENT_DESKTOP"), *platform.keyboardLayout);
    platform.windowColors = onBus<DesktopColors>(*early.bus);
    platform.notifications = onBus<DBusNotifications>(*early.bus);
    platform.lockSignals = onBus<DBusLockSignals>(*early.bus);
    platform.fileRevealer = onBus<DBusFileRevealer>(*early.bus);
    platform.textRecognizer = makeTextRecognizer();
    if (!isWithoutDesktop()
        && (addWaylandDesktop(platform, early) || addX11Desktop(platform, early)))
        return platform;
    if (!isWithoutDesktop())
        logLine(QStringLiteral("No X server to work with: shortcuts, screens and the clipboard "
                               "cannot be used"));
    addNullDesktop(platform);
    if (isWaylandSession())
        platform.capturePermission = refuseToCapture();
    return platform;
}

} // namespace tovek
