// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/ScreenshotService.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/WhenReady.h"

#include <algorithm>

namespace tovek {

ScreenshotService::ScreenshotService(ScreenGrabber &grabber) : m_grabber(grabber) { }

QFuture<ScreenshotService::Captured>
ScreenshotService::captureScreen(const Screen &screen, const ShareableContent &content,
                                 const std::vector<quint32> &excludingWindows)
{
    if (!screen.displayId) {
        logLine(QStringLiteral("Could not get display ID for screen"));
        return readyFuture(Captured());
    }
    const auto display =
        std::find_if(content.displays.begin(), content.displays.end(),
                     [&](const CaptureDisplay &d) { return d.displayId == *screen.displayId; });
    if (display == content.displays.end()) {
        logLine(QStringLiteral("Could not find SCDisplay for display %1").arg(*screen.displayId));
        return readyFuture(Captured());
    }
    // Shared between the continuations, of which exactly one finishes it.
    const auto promise = std::make_shared<QPromise<Captured>>();
    promise->start();
    const CapturedDisplay wanted{screen, *display, nullptr};
    whenReady(m_grabber.capture(content, *display, excludingWindows), this,
              [this, wanted, excludingWindows, promise](const ScreenGrabber::Result &result) {
                  if (!result.frozen) {
                      logLine(QStringLiteral("ScreenCaptureKit capture failed for screen: %1, "
                                             "falling back")
                                  .arg(result.error));
                      fallBack(wanted, excludingWindows, promise);
                      return;
                  }
                  CapturedDisplay captured = wanted;
                  captured.screenshot = result.frozen;
                  promise->addResult(captured);
                  promise->finish();
              });
    return promise->future();
}

QFuture<ScreenshotService::Captured>
ScreenshotService::captureScreen(const Screen &screen, const std::vector<quint32> &excludingWindows)
{
    Q_ASSERT(isMainThread());
    const auto content = shareableContent();
    return content ? captureScreen(screen, *content, excludingWindows) : readyFuture(Captured());
}

void ScreenshotService::fallBack(const CapturedDisplay &wanted,
                                 const std::vector<quint32> &excludingWindows,
                                 const std::shared_ptr<QPromise<Captured>> &promise)
{
    // The grabber lives as long as the process; a window-system call may take its time here.
    ScreenGrabber &grabber = m_grabber;
    const QRect native = wanted.screen.native;
    const auto image = m_fallbacks.run<QImage>([&grabber, native, excludingWindows] {
        return grabber.captureFallback(native, excludingWindows);
    });
    whenFinished(image, this, [this, wanted, promise](const QImage &pixels) {
        Captured captured;
        if (pixels.isNull()) {
            logLine(QStringLiteral("Failed to capture screen via fallback"));
        } else {
            captured = wanted;
            captured->screenshot = m_grabber.frozenFromImage(pixels);
        }
        promise->addResult(captured);
        promise->finish();
    });
}

} // namespace tovek
