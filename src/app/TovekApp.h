// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "app/AppDelegate.h"
#include "app/SettingsTabs.h"
#include "app/SettingsWindow.h"
#include "app/WindowLook.h"
#include "foundation/UserDefaults.h"
#include "update/UpdaterManager.h"

#include <QPointer>

namespace tovek {

/// The program: owns the delegate and the settings window, and opens the latter on request.
class TovekApp : public QObject
{
public:
    TovekApp(Platform &platform, UserDefaults &defaults, UpdateConfiguration updates);
    ~TovekApp() override;

    AppDelegate &appDelegate() { return m_appDelegate; }
    SettingsWindow *settingsWindow() const { return m_settingsWindow; }
    /// The program that is to run in place of this one, itself or a new version; mostly empty.
    QString successor() const { return m_successor; }
    /// No capture, no window and no update that a new start would cut short.
    bool isIdle();
    /// Quits as soon as no capture would be lost by it.
    void makeWayFor(const QString &program);

private:
    void openSettings();
    void bringForward();

    Platform &m_platform;
    AppState &m_appState;
    UserDefaults m_updaterDefaults; ///< the updater's own store
    UpdaterManager m_updaterManager;
    WindowLook m_windowLook;
    AppDelegate m_appDelegate;
    SettingsTabs m_settingsTabs;
    QString m_successor;
    QPointer<SettingsWindow> m_settingsWindow; ///< deletes itself when it is closed
};

} // namespace tovek
