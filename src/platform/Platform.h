// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <functional>
#include <memory>

namespace tovek {

class CapturePermission;
class Clipboard;
class Clock;
class FileRevealer;
class FrontmostApp;
class HotKeys;
class KeyboardHold;
class KeyboardLayout;
class LockSignals;
class LoginItem;
class Notifications;
class OverlayShell;
class PreviewShell;
class ScreenGrabber;
class Screens;
class SoundOutput;
class SystemShortcuts;
class TextRecognizer;
class ToastShell;
class Tray;
class WindowColors;

/// The desktop's services, each chosen for the session that the program runs in. Made once by
/// main. Those of the first group are always set; of the second, what the session does not have is
/// null, and the program does without.
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
    std::unique_ptr<LoginItem> loginItem;

    std::unique_ptr<CapturePermission> capturePermission;
    std::unique_ptr<ToastShell> toastShell;
    std::unique_ptr<PreviewShell> previewShell;
    std::unique_ptr<KeyboardHold> keyboardHold;
    std::unique_ptr<SoundOutput> soundOutput;
    std::unique_ptr<Notifications> notifications;
    std::unique_ptr<FileRevealer> fileRevealer;
    std::unique_ptr<LockSignals> lockSignals;
    std::unique_ptr<Tray> tray;
    std::unique_ptr<TextRecognizer> textRecognizer;
    std::unique_ptr<SystemShortcuts> systemShortcuts;
    std::unique_ptr<WindowColors> windowColors;
};

} // namespace tovek
