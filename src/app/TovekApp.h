// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "app/AppDelegate.h"
#include "app/SettingsTabs.h"
#include "app/SettingsWindow.h"

#include <QPointer>

namespace tovek {

/// The program: owns the delegate and the settings window, and opens the latter on request.
class TovekApp : public QObject
{
public:
    TovekApp(Platform &platform, UserDefaults &defaults);
    ~TovekApp() override;

    AppDelegate &appDelegate() { return m_appDelegate; }
    SettingsWindow *settingsWindow() const { return m_settingsWindow; }

private:
    void openSettings();
    void bringForward();

    Platform &m_platform;
    AppState &m_appState;
    AppDelegate m_appDelegate;
    SettingsTabs m_settingsTabs;
    QPointer<SettingsWindow> m_settingsWindow; ///< deletes itself when it is closed
};

} // namespace tovek
