// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "capture/CapturedDisplay.h"
#include "foundation/Workers.h"

#include <QObject>

namespace tovek {

/// Freezes screens. Stateless; every failure is a log line and an absent result, and the only
/// second try is the fallback. Main thread.
class ScreenshotService : public QObject
{
public:
    using Captured = std::optional<CapturedDisplay>;

    explicit ScreenshotService(ScreenGrabber &grabber);

    /// See ScreenGrabber::prepare.
    void prepare() { m_grabber.prepare(); }
    std::optional<ShareableContent> shareableContent() { return m_grabber.shareableContent(); }
    /// See ScreenGrabber::freeze.
    QFuture<std::optional<ShareableContent>> freeze() { return m_grabber.freeze(); }
    /// See ScreenGrabber::failure.
    QString failure() const { return m_grabber.failure(); }
    /// With the content that the caller fetched once for all screens. The future may be ready at
    /// once.
    QFuture<Captured> captureScreen(const Screen &screen, const ShareableContent &content,
                                    const std::vector<quint32> &excludingWindows);
    /// Fetches the content itself.
    QFuture<Captured> captureScreen(const Screen &screen,
                                    const std::vector<quint32> &excludingWindows);

private:
    void fallBack(const CapturedDisplay &wanted, const std::vector<quint32> &excludingWindows,
                  const std::shared_ptr<QPromise<Captured>> &promise);

    ScreenGrabber &m_grabber;
    Workers m_fallbacks{1};
};

} // namespace tovek
