// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "capture/CaptureFeedback.h"
#include "capture/PermissionManager.h"
#include "capture/PermissionWindowController.h"
#include "feedback/NotificationManager.h"
#include "feedback/SoundManager.h"
#include "feedback/Toast.h"
#include "menubar/StatusBarController.h"
#include "text/OCRService.h"

namespace tovek {

class UserDefaults;
struct Platform;

/// The services around a capture, as far as the session has what they need; the others are null
/// and the program does without. Main thread only.
struct AppServices
{
    AppServices(Platform &platform, const UserDefaults &defaults);
    ~AppServices();

    /// What the capture reports to; refers to this object.
    CaptureFeedback feedback();
    /// Loads the sound now, so that the first copy is not the one that waits for it.
    void prepareSound();

    Platform &platform;
    std::unique_ptr<Toast> toast;
    std::unique_ptr<SoundManager> soundManager; ///< null until the first capture
    std::unique_ptr<NotificationManager> notificationManager;
    std::unique_ptr<StatusBarController> statusBarController;
    std::unique_ptr<PermissionManager> permissionManager;
    std::unique_ptr<PermissionWindowController> permissionWindowController;
    std::unique_ptr<OCRService> ocrService;
};

} // namespace tovek
