// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "capture/CaptureFeedback.h"
#include "capture/SelectionText.h"
#include "overlay/CaptureMode.h"

namespace tovek {

class Clipboard;
class Clock;
class FrontmostApp;
class ImageOutput;
class KeyboardLayout;
class OverlayShell;
class ScreenshotService;
class Screens;
class UserDefaults;

/// What a capture uses; all of it outlives the controller. Functions are called only if set.
struct CaptureServices
{
    const Screens &screens;
    ScreenshotService &screenshots;
    OverlayShell &overlayShell;
    FrontmostApp &frontmostApp;
    Clock &clock;
    Clipboard &clipboard;
    ImageOutput &output;
    const UserDefaults &defaults;
    const KeyboardLayout *keyboardLayout = nullptr;
    CaptureFeedback feedback = {};
    std::function<bool()> hasPermission = {}; ///< unset: there is
    std::function<void()> showPermissionWindow = {};
    std::function<void()> willFreeze = {}; ///< what must not be in the picture goes now
    std::function<void(CaptureMode)> didOpen = {}; ///< the overlays are up; nobody waits
    std::function<void()> didClose = {}; ///< the overlays are gone; results may still be made
    SelectionText::Recognize recognizeText = {};
};

} // namespace tovek
