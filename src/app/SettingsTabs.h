// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "app/AppState.h"
#include "foundation/UserDefaults.h"
#include "update/UpdaterManager.h"

class QAction;
class QIcon;
class QWidget;

namespace tovek {

struct Platform;

/// Fills the tabs of the settings window with what the program has behind them.
class SettingsTabs
{
public:
    SettingsTabs(Platform &platform, UserDefaults &defaults);

    QWidget *make(SettingsTab tab, QWidget *parent);
    QIcon icon(SettingsTab tab, const QWidget &window) const;
    UpdaterManager &updaterManager() { return m_updaterManager; }

    std::function<void(bool isVisible)> setStatusItemVisible;

private:
    QWidget *makeGeneral(QWidget *parent);
    QWidget *makeShortcuts(QWidget *parent);

    Platform &m_platform;
    UserDefaults &m_defaults;
    UserDefaults m_updaterDefaults; ///< the updater's own store
    UpdaterManager m_updaterManager;
    /// The menu's items that answer to keys of their own; the menu itself exists only while it
    /// is open.
    QObject m_menuItems;
    QList<QAction *> m_mainMenu;
};

} // namespace tovek
