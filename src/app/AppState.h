// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>

namespace tovek {

/// The tabs of the settings window, in their order.
enum class SettingsTab { general, shortcuts, about };

/// The window title of a tab, which is also its label.
QString titleOf(SettingsTab tab);

/// Through this any part of the program asks for the settings window. Choose the tab first, then
/// request the window. Main thread.
class AppState : public QObject
{
    Q_OBJECT

public:
    static AppState &shared();

    bool shouldOpenSettings() const { return m_shouldOpenSettings; }
    void setShouldOpenSettings(bool should);
    SettingsTab selectedSettingsTab() const { return m_selectedSettingsTab; }
    void setSelectedSettingsTab(SettingsTab tab);

Q_SIGNALS:
    void shouldOpenSettingsChanged(bool should);
    void selectedSettingsTabChanged(tovek::SettingsTab tab);

private:
    bool m_shouldOpenSettings = false;
    SettingsTab m_selectedSettingsTab = SettingsTab::general;
};

} // namespace tovek
