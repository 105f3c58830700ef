// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/CaptureMode.h"
#include "platform/ScreenGrabber.h"

namespace tovek {

class Clock;
class KeyboardLayout;
class UserDefaults;

/// What an overlay view is made from.
struct OverlayContext
{
    Screen screen;
    std::shared_ptr<FrozenDisplay> screenshot;
    CaptureMode captureMode = CaptureMode::normal;
    Clock &clock;
    const UserDefaults &defaults;
    const KeyboardLayout *keyboardLayout = nullptr;
};

} // namespace tovek
