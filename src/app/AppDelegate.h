// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "app/AppServices.h"
#include "app/CaptureCountdown.h"
#include "capture/ImageOutput.h"
#include "capture/OverlayController.h"
#include "capture/ScreenshotService.h"
#include "foundation/WorkingMemory.h"

namespace tovek {

class AppState;
enum class SettingsTab;
class HotkeyManager;
class UpdaterManager;
class UserDefaults;
struct Platform;

/// Starts the shared services and connects them with each other: the only place that knows all of
/// them.
class AppDelegate : public QObject
{
public:
    AppDelegate(Platform &platform, UserDefaults &defaults, AppState &state,
                UpdaterManager &updaterManager);
    ~AppDelegate() override;

    enum class Launch { byUser, inBackground };
    /// The start sequence. In the background no window opens. The shortcuts are registered
    /// already; from here on they act.
    void applicationDidFinishLaunching(Launch launch, HotkeyManager &hotkeys);
    /// The program was launched again while it runs: always opens the settings.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);
    /// A command from outside, by its name. A capture begins after the delay, which is counted down
    /// on the screen.
    void performAction(const QString &action, int delaySeconds = 0);
    void openSettings(SettingsTab tab);
    /// Of the setting that shows the program in the panel.
    void setStatusItemVisible(bool isVisible);

    std::function<void()> prepareWindow; ///< before each window of the delegate's
    std::function<void()> learnColors; ///< while nobody waits, and before most toasts
    void setDesktopDark(bool isDark);

    OverlayController &overlayController() { return m_overlayController; }
    /// What is being saved; to be kept until the clipboard has been handed over.
    std::shared_ptr<SaveQueue> saves() const { return m_imageOutput.saves(); }

private:
    OverlayController::Services overlayServices();
    void setUpStatusBar();
    void tellOfNoStatusItem();
    /// Makes what the first capture would wait for, and what need not be done at once.
    void warmUp();
    /// Gives back the memory that only work needs, unless there is more work before.
    void restSoon();
    void showPermissionWindow();
    void checkForUpdates();
    void tellFailure(const QString &message);

    Platform &m_platform;
    AppState &m_state;
    UserDefaults &m_defaults;
    UpdaterManager &m_updaterManager;
    AppServices m_services;
    ScreenshotService m_screenshotService;
    ImageOutput m_imageOutput;
    OverlayController m_overlayController;
    CaptureCountdown m_countdown;
    WorkingMemory m_workingMemory;
    quint64 m_activity = 0; ///< grows with each reason to rest
};

} // namespace tovek
