// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <memory>

namespace tovek {

class Clipboard;
class Clock;
class FrontmostApp;
class HotKeys;
class KeyboardLayout;
class OverlayShell;
class ScreenGrabber;
class Screens;

/// The desktop's services, each chosen for the session that the program runs in. Made once by
/// main; every member is set.
struct Platform
{
    Platform();
    ~Platform();
    Platform(Platform &&) noexcept;
    Platform &operator=(Platform &&) noexcept;

    std::unique_ptr<Clock> clock;
    std::unique_ptr<Screens> screens;
    std::unique_ptr<ScreenGrabber> grabber;
    std::unique_ptr<OverlayShell> overlayShell;
    std::unique_ptr<HotKeys> hotKeys;
    std::unique_ptr<KeyboardLayout> keyboardLayout;
    std::unique_ptr<Clipboard> clipboard;
    std::unique_ptr<FrontmostApp> frontmostApp;
};

} // namespace tovek
