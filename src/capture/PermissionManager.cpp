// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/PermissionManager.h"

namespace tovek {

PermissionManager::PermissionManager(CapturePermission &permission) : m_permission(permission) { }

bool PermissionManager::hasPermission() const
{
    return m_permission.hasAccess();
}

void PermissionManager::openSystemSettings()
{
    m_permission.requestAccess();
    m_permission.openSettings();
}

} // namespace tovek
