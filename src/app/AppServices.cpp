// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/AppServices.h"

#include "foundation/Symbol.h"
#include "platform/CapturePermission.h"
#include "platform/Clock.h"
#include "platform/FileRevealer.h"
#include "platform/Platform.h"
#include "platform/TextRecognizer.h"
#include "platform/ToastWindow.h"

namespace tovek {

AppServices::AppServices(Platform &desktop, const UserDefaults &defaults) : platform(desktop)
{
    if (platform.toastShell)
        toast = std::make_unique<Toast>(*platform.clock, *platform.screens, *platform.toastShell,
                                        &symbolImage);
    if (platform.notifications && platform.fileRevealer)
        notificationManager =
            std::make_unique<NotificationManager>(*platform.notifications, *platform.fileRevealer);
    if (platform.tray)
        statusBarController = std::make_unique<StatusBarController>(
            *platform.tray, *platform.clock, defaults, &symbolImage, platform.previewShell.get());
    if (platform.capturePermission) {
        permissionManager = std::make_unique<PermissionManager>(*platform.capturePermission);
        permissionWindowController = std::make_unique<PermissionWindowController>(
            *permissionManager, *platform.frontmostApp, &symbolImage);
    }
    if (platform.textRecognizer)
        ocrService = std::make_unique<OCRService>(*platform.textRecognizer);
}

AppServices::~AppServices() = default;

CaptureFeedback AppServices::feedback()
{
    CaptureFeedback feedback;
    feedback.toast = [this](const QString &message, const QString &symbol,
                            const std::optional<Screen> &screen) {
        if (toast)
            toast->show(message, symbol, screen);
        else if (notificationManager && symbol.startsWith(QLatin1String("xmark")))
            // Confirmations have their sound, and would be in the next picture.
            notificationManager->showMessage(message);
    };
    feedback.extendToast = [this](const QString &message, const QString &more) {
        return toast && toast->extend(message, more);
    };
    feedback.playCopySound = [this] {
        prepareSound();
        if (soundManager)
            soundManager->playCopySound();
    };
    feedback.showPreview = [this](const Image &image, std::chrono::seconds duration) {
        if (statusBarController)
            statusBarController->showPreview(image, duration);
    };
    feedback.showSavedNotification = [this](const QString &message, const QUrl &file) {
        if (notificationManager)
            notificationManager->showSavedNotification(message, file);
    };
    return feedback;
}

void AppServices::prepareSound()
{
    if (!soundManager && platform.soundOutput)
        soundManager = std::make_unique<SoundManager>(*platform.soundOutput);
}

} // namespace tovek
