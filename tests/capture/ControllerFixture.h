// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "capture/ImageOutput.h"
#include "capture/OverlayController.h"
#include "capture/ScreenshotService.h"
#include "fakes/FakeClipboard.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeFrontmostApp.h"
#include "fakes/FakeOverlayShell.h"
#include "fakes/FakeScreenGrabber.h"
#include "fakes/FakeScreens.h"
#include "foundation/UserDefaults.h"
#include "foundation/WhenReady.h"
#include "overlay/OverlayWindow.h"

#include <QTemporaryDir>
#include <QTest>

namespace tovek {

/// Two screens side by side, the second at scale 2; the pointer on the first.
struct ControllerFixture
{
    ControllerFixture()
        : defaults(folder.filePath(QStringLiteral("defaults.json")))
        , screenshots(grabber)
    {
        screens.screens = {FakeScreens::screen(1, {0, 0, 400, 300}),
                           FakeScreens::screen(2, {400, 0, 300, 200}, 2)};
        screens.mouse = {10, 10};
        grabber.images[1] = numbered({400, 300});
        grabber.images[2] = numbered({600, 400});
        frontmost.front = RunningApplication{11, 12, 13};
        frontmost.policy = ActivationPolicy::regular;
        defaults.setString(QStringLiteral("saveFolderPath"), folder.path());
        feedback.toast = [this](const QString &message, const QString &symbol,
                                const std::optional<Screen> &screen) {
            events << QStringLiteral("toast %1 [%2] on %3, %4 open")
                          .arg(message, symbol)
                          .arg(screen ? int(screen->displayId.value_or(0)) : -1)
                          .arg(controller->overlayWindows().size());
        };
        feedback.extendToast = [this](const QString &message, const QString &more) {
            if (!isToastUp)
                return false;
            events << QStringLiteral("%1 -> %2").arg(message, more);
            return true;
        };
        feedback.playCopySound = [this] { events << QStringLiteral("sound"); };
        feedback.showPreview = [this](const Image &image, std::chrono::seconds duration) {
            events << QStringLiteral("preview %1x%2 for %3")
                          .arg(image.bitmap.width())
                          .arg(image.bitmap.height())
                          .arg(duration.count());
        };
        feedback.showSavedNotification = [this](const QString &message, const QUrl &file) {
            events << QStringLiteral("notification %1 %2").arg(message, file.fileName());
        };
        output = std::make_unique<ImageOutput>(clipboard, defaults, clock, feedback);
        OverlayController::Services services{screens, screenshots, shell,   frontmost,
                                             clock,   clipboard,   *output, defaults};
        services.feedback = feedback;
        services.hasPermission = [this] { return hasPermission; };
        services.showPermissionWindow = [this] { events << QStringLiteral("permission"); };
        services.recognizeText = [this](const Image &image, const SelectionText::Use &tellPart,
                                        const SelectionText::TellMissing &tellMissing) {
            miss << tellMissing;
            recognised << image.bitmap.size();
            if (recognize)
                return recognize(image, tellPart);
            return readyFuture(regions);
        };
        controller = std::make_unique<OverlayController>(services);
    }

    static QImage numbered(QSize size)
    {
        QImage image(size, QImage::Format_RGB32);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x)
                image.setPixel(x, y, qRgb(x % 256, y % 256, x / 256));
        }
        return image;
    }

    OverlayCallbacks &overlay(size_t index = 0)
    {
        return controller->overlayWindows().at(index)->callbacks();
    }

    QTemporaryDir folder;
    FakeClock clock;
    FakeScreens screens;
    FakeScreenGrabber grabber;
    FakeOverlayShell shell;
    FakeFrontmostApp frontmost;
    FakeClipboard clipboard;
    UserDefaults defaults;
    ScreenshotService screenshots;
    CaptureFeedback feedback;
    std::unique_ptr<ImageOutput> output;
    std::unique_ptr<OverlayController> controller;
    bool hasPermission = true;
    std::vector<TextRegion> regions;
    /// Unset: `regions` at once.
    std::function<QFuture<std::vector<TextRegion>>(const Image &, const SelectionText::Use &)>
        recognize;
    QList<SelectionText::TellMissing> miss; ///< of each recognition
    bool isToastUp = true;
    QStringList events;
    QList<QSize> recognised;
};

} // namespace tovek
