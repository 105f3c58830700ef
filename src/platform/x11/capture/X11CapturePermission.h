// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/CapturePermission.h"

namespace tovek {

/// Every program that may connect to an X server may read its screen; there is nothing to grant.
class X11CapturePermission : public CapturePermission
{
public:
    bool hasAccess() const override { return true; }
    void requestAccess() override { }
    void openSettings() override { }
};

} // namespace tovek
