// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

namespace tovek {

/// Whether the desktop lets the program see the screen. Main thread only.
class CapturePermission
{
public:
    virtual ~CapturePermission() = default;
    /// Never asks the user.
    virtual bool hasAccess() const = 0;
    /// Tells the desktop that the program wants access; it may ask the user now.
    virtual void requestAccess() = 0;
    /// Opens the page of the desktop's settings where access is granted. Nothing where there is
    /// none.
    virtual void openSettings() = 0;
};

} // namespace tovek
