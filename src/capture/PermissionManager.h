// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/CapturePermission.h"

namespace tovek {

/// The permission to capture the screen. Main thread only.
class PermissionManager
{
public:
    explicit PermissionManager(CapturePermission &permission);

    /// Never asks the user.
    bool hasPermission() const;
    /// Lists the program among those that want access, then opens the page where it is granted.
    void openSystemSettings();
    /// See CapturePermission::advice.
    std::optional<CaptureAdvice> advice() const { return m_permission.advice(); }
    /// See CapturePermission::isAsking.
    bool isAsking() const { return m_permission.isAsking(); }
    void setOnAnswered(std::function<void()> answered)
    {
        m_permission.onAnswered = std::move(answered);
    }

private:
    CapturePermission &m_permission;
};

} // namespace tovek
