// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/CaptureMode.h"
#include "platform/HotKeys.h"

namespace tovek {

/// Binds the program's shortcuts to what they start. Main thread.
class HotkeyManager
{
public:
    /// Once per process, and before there is an application: keys are taken from this call on.
    void registerShortcuts();

    /// What a combination starts now, for HotKeys::purposeOf; absent when nothing does. Needs the
    /// application.
    static std::optional<HotKeyPurpose> purposeOf(KeyCombo combo);

    /// The key of a shortcut came up: the capture starts.
    std::function<void(CaptureMode mode)> onCapture;
    /// The key of a shortcut went down: it will come up soon.
    std::function<void()> onPrepare;
};

} // namespace tovek
