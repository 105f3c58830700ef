// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/AppState.h"

#include "foundation/MainThread.h"

namespace tovek {

QString titleOf(SettingsTab tab)
{
    switch (tab) {
    case SettingsTab::general:
        return QStringLiteral("General");
    case SettingsTab::shortcuts:
        return QStringLiteral("Shortcuts");
    case SettingsTab::about:
        return QStringLiteral("About");
    }
    Q_UNREACHABLE();
}

AppState &AppState::shared()
{
    static AppState state;
    return state;
}

void AppState::setShouldOpenSettings(bool should)
{
    Q_ASSERT(isMainThread());
    if (m_shouldOpenSettings == should)
        return;
    m_shouldOpenSettings = should;
    Q_EMIT shouldOpenSettingsChanged(should);
}

void AppState::setSelectedSettingsTab(SettingsTab tab)
{
    Q_ASSERT(isMainThread());
    if (m_selectedSettingsTab == tab)
        return;
    m_selectedSettingsTab = tab;
    Q_EMIT selectedSettingsTabChanged(tab);
}

} // namespace tovek
