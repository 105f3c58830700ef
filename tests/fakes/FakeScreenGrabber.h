// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/ScreenGrabber.h"

#include <QPromise>

#include <map>

namespace tovek {

/// A frozen display with known pixels.
class FakeFrozenDisplay : public FrozenDisplay
{
public:
    explicit FakeFrozenDisplay(const QImage &image)
        : m_image(image.convertToFormat(QImage::Format_RGB32))
    {
    }
    QSize size() const override { return m_image.size(); }
    QFuture<QImage> pixels() override;

private:
    QImage m_image;
};

/// Grabs what the test gave it: an image a display, as it is when the content is asked for.
class FakeScreenGrabber : public ScreenGrabber
{
public:
    void prepare() override { ++preparations; }
    std::optional<ShareableContent> shareableContent() override;
    QFuture<std::optional<ShareableContent>> freeze() override;
    QFuture<Result> capture(const ShareableContent &content, const CaptureDisplay &display,
                            const std::vector<quint32> &excludedWindows) override;
    QImage captureFallback(QRect native, const std::vector<quint32> &excludedWindows) override;
    std::shared_ptr<FrozenDisplay> frozenFromImage(const QImage &image) override;

    /// While held, captures stay under way; `finish` lets one complete.
    void hold(quint32 displayId) { m_held.try_emplace(displayId); }
    void finish(quint32 displayId);
    /// While this is on, the content is under way until `finishFreeze`.
    bool freezesSlowly = false;
    void finishFreeze();
    QString failure() const override { return whyNone; }
    QString whyNone;

    std::map<quint32, QImage> images;
    std::map<quint32, QString> errors; ///< displays whose capture fails, with the reason
    QImage fallbackImage; ///< null: the fallback fails too
    bool hasContent = true;
    int preparations = 0;
    std::vector<QRect> fallbackRects;

private:
    struct Held
    {
        QPromise<Result> promise;
        ShareableContent content;
    };
    Result resultFor(const ShareableContent &content, quint32 displayId) const;

    std::map<quint32, std::shared_ptr<Held>> m_held;
    std::optional<QPromise<std::optional<ShareableContent>>> m_freeze;
};

} // namespace tovek
