// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/PlatformFactory.h"

#include "app/PortalPlatform.h"
#include "foundation/Log.h"
#include "foundation/Unfinished.h"
#include "platform/FirstTray.h"
#include "platform/linux/AutostartLoginItem.h"
#include "platform/linux/CanberraSoundOutput.h"
#include "platform/linux/DBusFileRevealer.h"
#include "platform/linux/DBusLockSignals.h"
#include "platform/linux/DBusNotifications.h"
#include "platform/linux/DBusSingleInstance.h"
#include "platform/linux/DesktopColors.h"
#include "platform/linux/DesktopShortcuts.h"
#include "platform/linux/KGlobalAccelHotKeys.h"
#include "platform/linux/QtClock.h"
#include "platform/linux/SessionBus.h"
#include "platform/linux/StatusNotifierItem.h"
#include "platform/linux/TesseractRecognizer.h"
#include "platform/linux/UnreadErrors.h"
#include "platform/linux/UserBoundHotKeys.h"
#include "platform/null/NullCapturePermission.h"
#include "platform/null/NullClipboard.h"
#include "platform/null/NullDesktop.h"
#include "platform/null/NullKeyboard.h"
#include "platform/portal/PortalBus.h"
#ifdef TOVEK_WITH_WAYLAND
#include "platform/wayland/ToolkitDrawing.h"
#include "platform/wayland/capture/ExtScreenGrabber.h"
#include "platform/wayland/capture/KWinCapturePermission.h"
#include "platform/wayland/capture/KWinScreenGrabber.h"
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
#ifdef TOVEK_WITH_X11
#include "platform/x11/X11ActivationToken.h"
#include "platform/x11/X11Resources.h"
#include "platform/x11/capture/X11CapturePermission.h"
#include "platform/x11/capture/X11FrontmostApp.h"
#include "platform/x11/capture/X11ScreenGrabber.h"
#include "platform/x11/capture/X11Screens.h"
#include "platform/x11/capture/XWayland.h"
#include "platform/x11/clipboard/X11Clipboard.h"
#include "platform/x11/keys/X11HotKeys.h"
#include "platform/x11/keys/X11KeyboardLayout.h"
#include "platform/x11/overlay/X11OverlaySurface.h"
#include "platform/x11/overlay/X11ToastShell.h"
#include "platform/x11/tray/X11TrayItem.h"
#include "platform/x11/tray/XSettings.h"
#endif

#include <QCoreApplication>

#include <cstdlib>

namespace tovek {

namespace {

bool isWithoutDesktop()
{
    return qEnvironmentVariable("TOVEK_PLATFORM") == QLatin1String("null");
}

bool isWaylandSession()
{
    return qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

/// A black picture and overlays over a desktop that nobody can see would be worse than none.
std::unique_ptr<CapturePermission> refuseToCapture()
{
    logLine(QStringLiteral("This Wayland session cannot be captured: nothing will be"));
    return std::make_unique<NullCapturePermission>(CaptureAdvice{
        QStringLiteral("This Session Cannot Be Captured"),
        QStringLiteral("This kind of Wayland desktop shows its screens through a desktop portal "
                       "only, and takes windows over them through Xwayland only. One of them is "
                       "missing, and Tovek would see nothing but black:"),
        {QStringLiteral("Install Xwayland, xdg-desktop-portal and its part for your desktop, such "
                        "as xdg-desktop-portal-gnome"),
         QStringLiteral("Log out and in, and start Tovek again"),
         QStringLiteral("Or choose a session \"on Xorg\" or \"X11\" on the login screen")}});
}

/// A service that follows the bus.
template <typename Service, typename... More>
std::unique_ptr<Service> onBus(const SessionBus &bus, More... more)
{
    auto service = std::make_unique<Service>(bus.connection(), more...);
    QObject::connect(&bus, &SessionBus::changed, service.get(), &Service::setBus);
    return service;
}

constexpr std::chrono::seconds unfinishedLimit(5);

void waitForUnfinished()
{
    Unfinished::waitForAll(unfinishedLimit);
}

/// Nothing of the toolkit can be taken down in order without its server.
[[noreturn]] void exitUnfinished()
{
    waitForUnfinished();
    std::_Exit(1);
}

/// As a Wayland desktop gives them, whatever the toolkit runs on.
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
std::unique_ptr<ScreenGrabber> makeWaylandGrabber(std::shared_ptr<WaylandConnection> connection,
                                                  std::shared_ptr<WaylandOutputs> outputs)
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

/// False where the toolkit does not run on Wayland, or the compositor lacks what a capture takes.
bool addWaylandDesktop(Platform &platform, EarlyPlatform &early)
{
    const std::shared_ptr<WaylandConnection> &connection = early.wayland;
    if (!connection)
        return false;
    keepToShmBuffers();
    const auto outputs = std::make_shared<WaylandOutputs>(connection);
    auto screens = std::make_unique<WaylandScreens>(outputs);
    auto grabber = makeWaylandGrabber(connection, outputs);
    auto overlayShell =
        LayerOverlayShell::create(outputs, [screens = screens.get()](uint32_t displayId) {
            screens->pointerSeenOn(displayId);
        });
    if (!grabber || !overlayShell)
        return false;
    if (dynamic_cast<KWinScreenGrabber *>(grabber.get()))
        platform.capturePermission = std::make_unique<KWinCapturePermission>();
    platform.screens = std::move(screens);
    platform.grabber = std::move(grabber);
    platform.overlayShell = std::move(overlayShell);
    platform.frontmostApp = std::make_unique<NullFrontmostApp>();
    platform.clipboard = DataControlClipboard::create(connection);
    if (!platform.clipboard)
        platform.clipboard = std::make_unique<NullClipboard>();
    platform.toastShell = LayerToastShell::create(connection, outputs);
    platform.previewShell = LayerPreviewShell::create(*platform.screens);
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
    auto grabber = makeWaylandGrabber(early.wayland, outputs);
    if (!grabber)
        return false;
    platform.screens = std::make_unique<WaylandScreens>(outputs);
    platform.grabber = std::move(grabber);
    platform.frontmostApp = std::make_unique<NullFrontmostApp>();
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

/// Null where the compositor does not offer what an overlay takes.
std::shared_ptr<WaylandConnection> openWayland()
{
    auto connection = WaylandConnection::open();
    return connection && connection->offers("zwlr_layer_shell_v1") ? connection : nullptr;
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

std::shared_ptr<WaylandConnection> openWayland()
{
    return nullptr;
}
#endif

#ifdef TOVEK_WITH_X11
void exitWithTheServer()
{
    logLine(QStringLiteral("The X server went away"));
    exitUnfinished();
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

/// What takes pictures. Null where the session is not one of X11.
std::shared_ptr<X11Connection> addX11Screens(Platform &platform, EarlyPlatform &early,
                                             std::shared_ptr<X11Monitors> &monitors)
{
    const std::shared_ptr<X11Connection> connection = X11Connection::create();
    if (!connection)
        return nullptr;
    monitors = std::make_shared<X11Monitors>(connection);
    platform.screens = std::make_unique<X11Screens>(connection, monitors);
    platform.frontmostApp = std::make_unique<X11FrontmostApp>(connection);
    const bool isGuest = isXWayland(*connection, *monitors);
    if (isGuest && usePortalPictures(platform, early))
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

/// False where the session is not one of X11.
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
    early.wayland = openWayland();
    const bool hasXWayland = qEnvironmentVariableIsSet("DISPLAY");
    if (early.wayland) {
        // Windows above all others are ours to make; see LayerSurface.
        qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
        if (wanted.isEmpty())
            qputenv("QT_QPA_PLATFORM", hasXWayland ? "wayland;xcb" : "wayland");
    } else if (hasXWayland && wanted.isEmpty()) {
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
}

double statedDotsPerInch([[maybe_unused]] const EarlyPlatform &early)
{
#ifdef TOVEK_WITH_X11
    if (!early.wayland && !isWithoutDesktop())
        return x11DotsPerInch().value_or(0);
#endif
    return 0;
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
