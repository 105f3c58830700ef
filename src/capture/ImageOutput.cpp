// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/ImageOutput.h"

#include "capture/FileWriter.h"
#include "capture/ImageCrop.h"
#include "capture/PngEncoder.h"
#include "capture/SaveLocation.h"
#include "capture/SaveQueue.h"
#include "foundation/Log.h"
#include "foundation/Memory.h"
#include "foundation/Unfinished.h"
#include "foundation/WhenReady.h"
#include "platform/Clipboard.h"
#include "platform/Clock.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QThread>

#include <atomic>
#include <new>

namespace tovek {

namespace {

constexpr std::chrono::seconds previewTime(20);
/// Writing a picture takes some milliseconds, on a slow network a second or two.
constexpr std::chrono::seconds answerLimit(5);
constexpr std::chrono::seconds pixelLimit(2); ///< at quitting

/// An empty value when there is none.
template <typename T>
T resultOf(const QFuture<T> &finished)
{
    return finished.resultCount() > 0 ? finished.result() : T();
}

} // namespace

/// What a save has come to; the first is set by its thread.
struct ImageOutput::Progress
{
    std::atomic<bool> isEncoded = false;
    bool isOver = false;
    bool isPassed = false; ///< by later saves
};

ImageOutput::ImageOutput(Clipboard &clipboard, const UserDefaults &defaults, Clock &clock,
                         CaptureFeedback feedback)
    : m_clipboard(clipboard)
    , m_defaults(defaults)
    , m_clock(clock)
    , m_feedback(std::move(feedback))
    , m_saves(std::make_shared<SaveQueue>())
    , m_copies(QThread::idealThreadCount())
{
}

ImageOutput::~ImageOutput()
{
    // Who quits sees no toast and no preview any more.
    m_feedback = {};
    const QDeadlineTimer limit(pixelLimit);
    while (!m_pending.empty()) {
        const Pending pending = std::move(m_pending.front());
        m_pending.pop_front();
        while (!pending.pixels.isFinished() && !limit.hasExpired())
            QThread::msleep(1);
        if (pending.pixels.isFinished())
            pending.use(resultOf(pending.pixels));
    }
}

std::optional<Image> ImageOutput::cropSelection(const QImage &pixels, const Rect &rect,
                                                const Screen &screen)
{
    return crop(Image{pixels, screen.frame.size()}, PixelRect::fromPoints(rect, screen.scale),
                rect.size());
}

void ImageOutput::copySelection(const QFuture<QImage> &pixels, const Rect &rect,
                                const Screen &screen)
{
    whenThere(pixels, [=, this](const QImage &frozen) {
        if (const auto image = cropSelection(frozen, rect, screen)) {
            copyImage(*image);
            return;
        }
        logLine(QStringLiteral("Failed to crop image"));
        fail(QStringLiteral("Failed to copy image"), screen);
    });
}

void ImageOutput::whenThere(const QFuture<QImage> &pixels, std::function<void(const QImage &)> use)
{
    m_pending.push_back({pixels, std::move(use)});
    const auto pending = std::prev(m_pending.end());
    whenFinished(pixels, this, [this, pending](const QImage &frozen) {
        const auto done = std::move(pending->use);
        m_pending.erase(pending);
        done(frozen);
    });
}

QFuture<QByteArray> ImageOutput::copyImage(const Image &image)
{
    PngOptions options;
    options.dotsPerInch = dotsPerInch(image);
    const auto png = m_copies.run<QByteArray>([bitmap = image.bitmap, options] {
        QByteArray bytes = encodePng(bitmap, options);
        releaseMemory();
        return bytes;
    });
    m_clipboard.setPng(png);
    showPreview(image);
    return png;
}

QString ImageOutput::saveLocation() const
{
    return saveLocationAt(m_clock.now(), m_defaults);
}

void ImageOutput::saveSelection(const QFuture<QImage> &pixels, const Rect &rect,
                                const Screen &screen, const QString &path)
{
    whenThere(pixels, [=, this](const QImage &frozen) {
        if (const auto image = cropSelection(frozen, rect, screen)) {
            saveImage(*image, screen, path);
            return;
        }
        logLine(QStringLiteral("Failed to crop image"));
        fail(QStringLiteral("Failed to save image"), screen);
    });
}

void ImageOutput::saveImage(const Image &image, const std::optional<Screen> &screen,
                            const QString &path)
{
    QPromise<Written> promise;
    const auto progress = std::make_shared<Progress>();
    whenFinished(promise.future(), this, [=, this](const Written &written) {
        progress->isOver = true;
        if (progress->isPassed)
            m_saves->stopLettingOthersPass();
        saved(image, screen, written);
    });
    promise.start();
    m_saves->start([promise = std::make_shared<QPromise<Written>>(std::move(promise)),
                    unfinished = std::make_shared<Unfinished>(), progress, bitmap = image.bitmap,
                    path]() mutable {
        Written written;
        try {
            written = encodeAndWrite(bitmap, path, *progress);
        } catch (const std::bad_alloc &) {
            // Told as a picture that could not be made.
        }
        unfinished.reset();
        promise->addResult(written);
        promise->finish();
        // The file is there; that it also survives a power failure need not be waited for.
        if (written.isEncoded && !written.error)
            syncToDisk(written.path);
        releaseMemory();
    });
    watch(progress, screen);
}

ImageOutput::Written ImageOutput::encodeAndWrite(const QImage &bitmap, const QString &path,
                                                 Progress &progress)
{
    const QByteArray png = encodePng(bitmap);
    progress.isEncoded = true;
    if (png.isEmpty())
        return {};
    const QString file = fileAt(path);
    return {true, writeFile(file, png), file};
}

/// The user believes that the picture is there, so that silence would be a lie.
void ImageOutput::watch(const std::shared_ptr<Progress> &progress,
                        const std::optional<Screen> &screen)
{
    m_clock.after(answerLimit, this, [=, this] {
        if (progress->isOver)
            return;
        if (!progress->isEncoded)
            return watch(progress, screen);
        progress->isPassed = true;
        m_saves->letOthersPass();
        logLine(QStringLiteral("Saving has not ended: the folder does not answer"));
        fail(QStringLiteral("Save folder is not answering"), screen);
    });
}

void ImageOutput::saved(const Image &image, const std::optional<Screen> &screen,
                        const Written &written)
{
    if (!written.isEncoded) {
        fail(QStringLiteral("Failed to create image"), screen);
        return;
    }
    if (written.error) {
        logLine(QStringLiteral("Failed to save image: ") + *written.error);
        fail(QStringLiteral("Failed to save image"), screen);
        return;
    }
    showPreview(image);
    if (m_feedback.showSavedNotification)
        m_feedback.showSavedNotification(QFileInfo(written.path).fileName(),
                                         QUrl::fromLocalFile(written.path));
}

void ImageOutput::fail(const QString &message, const std::optional<Screen> &screen) const
{
    if (m_feedback.toast)
        m_feedback.toast(message, QStringLiteral("xmark.circle.fill"), screen);
}

void ImageOutput::showPreview(const Image &image) const
{
    if (m_feedback.showPreview)
        m_feedback.showPreview(image, previewTime);
}

} // namespace tovek
