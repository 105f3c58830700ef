// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "app/AppState.h"

#include <QObject>

#include <functional>

class QAction;
class QIcon;
class QWidget;

namespace tovek {

class UpdaterManager;
class UserDefaults;
struct Platform;

/// Fills the tabs of the settings window with what the program has behind them.
class SettingsTabs
{
public:
    SettingsTabs(Platform &platform, UserDefaults &defaults, UpdaterManager &updaterManager);

    QWidget *make(SettingsTab tab, QWidget *parent);
    QIcon icon(SettingsTab tab, const QWidget &window) const;

    /// The menu's items that answer to keys of their own, for the window to obey. They stay ours.
    const QList<QAction *> &mainMenu() const { return m_mainMenu; }

    std::function<void(bool isVisible)> setStatusItemVisible;
    std::function<void()> openPreferences, quit;

private:
    QWidget *makeGeneral(QWidget *parent);
    QWidget *makeShortcuts(QWidget *parent);

    Platform &m_platform;
    UserDefaults &m_defaults;
    UpdaterManager &m_updaterManager;
    /// In their place while the menu itself, which exists only when it is open, does not.
    QObject m_menuItems;
    QList<QAction *> m_mainMenu;
};

} // namespace tovek
