// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/AppDelegate.h"

#include "KeyboardShortcuts/MenuItems.h"
#include "KeyboardShortcuts/ShortcutDescription.h"
#include "KeyboardShortcuts/ShortcutService.h"
#include "app/AppState.h"
#include "app/HotkeyManager.h"
#include "capture/PngEncoder.h"
#include "foundation/AppImage.h"
#include "foundation/Log.h"
#include "foundation/Settings.h"
#include "foundation/UserDefaults.h"
#include "overlay/OverlayCursor.h"
#include "overlay/OverlayPicture.h"
#include "platform/Clipboard.h"
#include "platform/Clock.h"
#include "platform/FrontmostApp.h"
#include "platform/LockSignals.h"
#include "platform/LoginItem.h"
#include "platform/Platform.h"
#include "update/UpdaterManager.h"

#include <QGuiApplication>
#include <QProcessEnvironment>

namespace tovek {

using namespace std::chrono_literals;

namespace {

constexpr auto settingsDelay = 100ms;
/// The desktop that may be starting as well has something to show first.
constexpr auto warmUpDelay = 500ms;
/// The result of a capture, its sound and its toast are made by then.
constexpr auto restDelay = 4s;

} // namespace

AppDelegate::AppDelegate(Platform &platform, UserDefaults &defaults, AppState &state,
                         UpdaterManager &updaterManager)
    : m_platform(platform)
    , m_state(state)
    , m_defaults(defaults)
    , m_updaterManager(updaterManager)
    , m_services(platform, defaults)
    , m_screenshotService(*platform.grabber)
    , m_imageOutput(*platform.clipboard, defaults, *platform.clock, m_services.feedback())
    , m_overlayController(overlayServices())
    , m_countdown(*platform.clock)
{
    m_countdown.tell = [this](const QString &message) {
        if (m_services.toast && !m_overlayController.isCapturing())
            m_services.toast->show(message, QStringLiteral("camera.viewfinder"));
    };
    if (m_services.toast)
        m_services.toast->frozenPixels = [this](QRect native) {
            return m_overlayController.frozenPixels(native);
        };
    m_platform.overlayShell->onLocker = [this] { m_overlayController.giveWayToLocker(); };
    m_platform.clipboard->onFailed = [this](Clipboard::Content content) {
        tellFailure(content == Clipboard::Content::picture ? QStringLiteral("Failed to copy image")
                                                           : QStringLiteral("Failed to copy text"));
    };
    if (m_platform.lockSignals)
        m_platform.lockSignals->onLocking = m_platform.overlayShell->onLocker;
    m_platform.overlayShell->onMouseHeld = [this] { m_overlayController.tellHeldMouse(); };
    m_updaterManager.updaterController().updater().onFailed = [this](const QString &text) {
        tellFailure(text);
    };
}

AppDelegate::~AppDelegate()
{
    m_platform.clipboard->onFailed = nullptr;
    m_platform.overlayShell->onLocker = nullptr;
    if (m_platform.lockSignals)
        m_platform.lockSignals->onLocking = nullptr;
    m_platform.overlayShell->onMouseHeld = nullptr;
}

OverlayController::Services AppDelegate::overlayServices()
{
    OverlayController::Services services{
        *m_platform.screens,
        m_screenshotService,
        *m_platform.overlayShell,
        *m_platform.frontmostApp,
        *m_platform.clock,
        *m_platform.clipboard,
        m_imageOutput,
        m_defaults,
    };
    services.keyboardLayout = m_platform.keyboardLayout.get();
    services.feedback = m_services.feedback();
    services.hasPermission = [this] {
        return !m_services.permissionManager || m_services.permissionManager->hasPermission();
    };
    services.showPermissionWindow = [this] { showPermissionWindow(); };
    services.willFreeze = [this] {
        if (m_services.toast)
            m_services.toast->hideForCapture();
        if (m_services.statusBarController)
            m_services.statusBarController->hideForCapture();
    };
    services.didOpen = [this](CaptureMode mode) {
        m_services.prepareSound();
        if (learnColors)
            learnColors();
        if (m_services.ocrService && mode != CaptureMode::copyImage)
            m_services.ocrService->prepare();
    };
    services.didClose = [this] {
        if (m_services.statusBarController)
            m_services.statusBarController->captureEnded();
        restSoon();
    };
    if (m_services.ocrService) {
        services.recognizeText = [this](const Image &image, const SelectionText::Use &tellPart,
                                        const SelectionText::TellMissing &tellMissing) {
            return m_services.ocrService->recognizeText(image, tellPart, tellMissing);
        };
    }
    return services;
}

void AppDelegate::setDesktopDark(bool isDark)
{
    if (m_services.toast)
        m_services.toast->isDesktopDark = isDark;
}

void AppDelegate::applicationDidFinishLaunching(Launch launch, HotkeyManager &hotkeys)
{
    m_platform.frontmostApp->setActivationPolicy(ActivationPolicy::accessory);
    setUpStatusBar();
    hotkeys.onCapture = [this](CaptureMode mode) { m_overlayController.startCapture(mode); };
    hotkeys.onPrepare = [this] {
        m_workingMemory.recall();
        m_overlayController.prepare();
    };
    KeyboardShortcuts::ShortcutService::shared().watchMenus();
    if (m_services.notificationManager)
        m_services.notificationManager->requestAuthorization();
    m_platform.clock->after(warmUpDelay, this, [this] {
        if (!m_overlayController.isCapturing())
            warmUp();
    });
    restSoon();
    if (launch == Launch::inBackground)
        return;
    // Who starts it where it is of no use learns that first, not when a capture is due.
    const bool isObstructed = m_services.permissionManager
        && !m_services.permissionManager->hasPermission() && m_services.permissionManager->advice();
    m_platform.clock->after(settingsDelay, this, [this, isObstructed] {
        if (isObstructed)
            showPermissionWindow();
        else
            m_state.setShouldOpenSettings(true);
    });
}

void AppDelegate::showPermissionWindow()
{
    if (prepareWindow)
        prepareWindow();
    m_services.permissionWindowController->show();
}

void AppDelegate::warmUp()
{
    const QString program = QCoreApplication::applicationFilePath();
    if (const auto file = appImageOf(program, QProcessEnvironment::systemEnvironment()))
        forgetKeptAppImage(*file);
    if (const auto failure = m_platform.loginItem->mend())
        logLine(QStringLiteral("Failed to enable launch at login: ") + *failure);
    OverlayArtist::warmUp(QGuiApplication::font());
    for (const Screen &screen : m_platform.screens->all())
        overlayCursor(Qt::CrossCursor, screen.scale, screen.cursorScale);
}

void AppDelegate::restSoon()
{
    m_platform.clock->after(restDelay, this, [this, activity = ++m_activity] {
        if (activity == m_activity && !m_overlayController.isCapturing())
            m_workingMemory.release();
    });
}

void AppDelegate::setUpStatusBar()
{
    StatusBarController *statusBar = m_services.statusBarController.get();
    if (!statusBar)
        return;
    auto &shortcuts = KeyboardShortcuts::ShortcutService::shared();
    const auto capture = [this](CaptureMode mode) {
        return [this, mode] { m_overlayController.startCapture(mode); };
    };
    statusBar->rows.actions.startCapture = capture(CaptureMode::normal);
    statusBar->rows.actions.captureImage = capture(CaptureMode::copyImage);
    statusBar->rows.actions.captureText = capture(CaptureMode::copyText);
    statusBar->rows.actions.checkForUpdates = [this] { checkForUpdates(); };
    statusBar->rows.updateObstacle = [this] { return m_updaterManager.checkObstacle(); };
    statusBar->rows.actions.openPreferences = [this] { openSettings(SettingsTab::general); };
    statusBar->rows.actions.openAbout = [this] { openSettings(SettingsTab::about); };
    statusBar->rows.actions.quit = [] { QCoreApplication::exit(); };
    statusBar->rows.bindShortcut = [&shortcuts](QAction &item, const QString &name) {
        KeyboardShortcuts::setShortcut(item, shortcuts.createName(name), shortcuts);
    };
    statusBar->describeKeys = [](const QKeySequence &keys) {
        return KeyboardShortcuts::description(keys);
    };
    statusBar->encodePng = [](const Image &image) { return encodePng(image.bitmap); };
    statusBar->onPreviewEnded = [this] { restSoon(); };
    statusBar->onNoHost = [this] { tellOfNoStatusItem(); };
    statusBar->setup();
}

/// Once and for all: who has read it knows how to go on.
void AppDelegate::tellOfNoStatusItem()
{
    NotificationManager *notifications = m_services.notificationManager.get();
    if (!notifications || Settings::toldOfNoStatusItem.in(m_defaults))
        return;
    notifications->onCapture = [this] { m_overlayController.startCapture(CaptureMode::normal); };
    notifications->onPreferences = [this] { openSettings(SettingsTab::general); };
    notifications->showInPlaceOfStatusItem(
        [this] { Settings::toldOfNoStatusItem.set(m_defaults, true); });
}

bool AppDelegate::applicationShouldHandleReopen(bool)
{
    m_state.setShouldOpenSettings(true);
    return true;
}

void AppDelegate::performAction(const QString &action, int delaySeconds)
{
    if (delaySeconds > 0) {
        m_countdown.start(delaySeconds, [this, action] { performAction(action); });
        return;
    }
    const struct
    {
        const char *name;
        std::function<void()> act;
    } actions[] = {
        {"start-capture", [this] { m_overlayController.startCapture(CaptureMode::normal); }},
        {"capture-image", [this] { m_overlayController.startCapture(CaptureMode::copyImage); }},
        {"capture-text", [this] { m_overlayController.startCapture(CaptureMode::copyText); }},
        {"preferences", [this] { openSettings(SettingsTab::general); }},
        {"about", [this] { openSettings(SettingsTab::about); }},
        {"check-for-updates", [this] { checkForUpdates(); }},
        // Not quit(), which every window may refuse, as overlays do.
        {"quit", [] { QCoreApplication::exit(); }},
    };
    for (const auto &[name, act] : actions) {
        if (action == QLatin1String(name))
            return act();
    }
}

void AppDelegate::setStatusItemVisible(bool isVisible)
{
    if (m_services.statusBarController)
        m_services.statusBarController->setVisible(isVisible);
}

void AppDelegate::openSettings(SettingsTab tab)
{
    m_state.setSelectedSettingsTab(tab);
    m_state.setShouldOpenSettings(true);
}

void AppDelegate::checkForUpdates()
{
    const QString reason = m_updaterManager.unavailableReason();
    if (!reason.isEmpty()) {
        logLine(reason);
        tellFailure(reason);
    }
    m_updaterManager.checkForUpdates();
}

void AppDelegate::tellFailure(const QString &message)
{
    if (m_services.toast)
        m_services.toast->show(message, QStringLiteral("xmark.circle.fill"));
}

} // namespace tovek
