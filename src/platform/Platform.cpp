// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/Platform.h"

#include "platform/CapturePermission.h"
#include "platform/Clipboard.h"
#include "platform/Clock.h"
#include "platform/FileRevealer.h"
#include "platform/FrontmostApp.h"
#include "platform/HotKeys.h"
#include "platform/KeyboardHold.h"
#include "platform/KeyboardLayout.h"
#include "platform/LockSignals.h"
#include "platform/LoginItem.h"
#include "platform/Notifications.h"
#include "platform/OverlaySurface.h"
#include "platform/PreviewShell.h"
#include "platform/ScreenGrabber.h"
#include "platform/SoundPlayer.h"
#include "platform/SystemShortcuts.h"
#include "platform/TextRecognizer.h"
#include "platform/ToastWindow.h"
#include "platform/Tray.h"
#include "platform/WindowColors.h"

namespace tovek {

Platform::Platform() = default;
Platform::~Platform() = default;
Platform::Platform(Platform &&) noexcept = default;
Platform &Platform::operator=(Platform &&) noexcept = default;

} // namespace tovek
