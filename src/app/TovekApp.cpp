// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/TovekApp.h"

#include "app/SettingsPlacement.h"
#include "app/SettingsWindow.h"
#include "app/WindowAccess.h"
#include "platform/Clock.h"
#include "platform/FrontmostApp.h"
#include "platform/Platform.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace tovek {

using namespace std::chrono_literals;

namespace {

constexpr auto captureCheck = 500ms;

} // namespace

TovekApp::TovekApp(Platform &platform, UserDefaults &defaults, UpdateConfiguration updates)
    : m_platform(platform)
    , m_appState(AppState::shared())
    , m_updaterDefaults(QFileInfo(defaults.path()).dir().filePath(QStringLiteral("updates.json")))
    , m_updaterManager(std::move(updates), m_updaterDefaults, *platform.clock)
    , m_windowLook(platform.windowColors.get(), m_updaterManager.updaterController().updater())
    , m_appDelegate(platform, defaults, m_appState, m_updaterManager)
    , m_settingsTabs(platform, defaults, m_updaterManager)
{
    installWindowAccess();
    m_updaterManager.updaterController().updater().onRelaunch = [this](const QString &program) {
        makeWayFor(program);
    };
    m_appDelegate.prepareWindow = [this] { m_windowLook.prepare(); };
    m_appDelegate.learnColors = [this] { m_windowLook.learn(); };
    m_windowLook.onTold = [this](bool isDark) { m_appDelegate.setDesktopDark(isDark); };
    m_settingsTabs.setStatusItemVisible = [this](bool isVisible) {
        m_appDelegate.setStatusItemVisible(isVisible);
    };
    m_settingsTabs.openPreferences = [this] { m_appDelegate.openSettings(SettingsTab::general); };
    m_settingsTabs.quit = [] { QCoreApplication::exit(); };
    connect(&m_appState, &AppState::shouldOpenSettingsChanged, this, [this](bool should) {
        if (should)
            openSettings();
    });
}

TovekApp::~TovekApp()
{
    delete m_settingsWindow;
}

void TovekApp::openSettings()
{
    m_platform.frontmostApp->setActivationPolicy(ActivationPolicy::regular);
    if (!m_settingsWindow) {
        m_windowLook.prepare();
        m_settingsWindow = new SettingsWindow(
            m_appState,
            {[this](SettingsTab tab, QWidget *parent) { return m_settingsTabs.make(tab, parent); },
             [this](SettingsTab tab, const QWidget &window) {
                 return m_settingsTabs.icon(tab, window);
             }});
        m_settingsWindow->addActions(m_settingsTabs.mainMenu());
        connect(m_settingsWindow, &SettingsWindow::willClose, this, [this] {
            m_platform.frontmostApp->setActivationPolicy(ActivationPolicy::accessory);
        });
    }
    m_platform.clock->after(0ms, this, [this] { bringForward(); });
}

bool TovekApp::isIdle()
{
    const QWindowList windows = QGuiApplication::topLevelWindows();
    return !m_appDelegate.overlayController().isCapturing()
        && !m_updaterManager.updaterController().updater().isRunning()
        && std::none_of(windows.begin(), windows.end(),
                        [](const QWindow *window) { return window->isVisible(); });
}

void TovekApp::makeWayFor(const QString &program)
{
    if (m_appDelegate.overlayController().isCapturing()) {
        m_platform.clock->after(captureCheck, this, [this, program] { makeWayFor(program); });
        return;
    }
    m_successor = program;
    QCoreApplication::exit();
}

void TovekApp::bringForward()
{
    if (m_settingsWindow) {
        SettingsWindow &window = *m_settingsWindow;
        const auto screens = m_platform.screens->all();
        if (const auto target = targetScreen(*m_platform.screens); target && !screens.empty()) {
            // The toolkit counts from the desktop's corner, we from the first screen's.
            const QPoint first = screens.front().native.topLeft();
            const ViewSpace global{screens.front().frame.size(), 1};
            const QRect place = window.isVisible() ? window.frameGeometry()
                                                   : QRect(QPoint(-10000, 0), window.size());
            const Point corner =
                global.pointFromWidget(QPointF(place.bottomLeft() + QPoint(0, 1) - first));
            const Rect frame{corner.x, corner.y, double(place.width()), double(place.height())};
            if (const auto origin = originOnScreen(frame, *target)) {
                const Point topLeft{origin->x, origin->y + frame.height};
                window.move(global.widgetFromPoint(topLeft).toPoint() + first);
            }
        }
        window.winId();
        m_platform.frontmostApp->bringForward(*window.windowHandle());
        window.show();
        window.raise();
        window.activateWindow();
    }
    m_appState.setShouldOpenSettings(false);
}

} // namespace tovek
