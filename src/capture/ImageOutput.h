// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "capture/CaptureFeedback.h"
#include "foundation/Workers.h"

#include <QFuture>
#include <QImage>
#include <QObject>

#include <list>
#include <memory>

namespace tovek {

class Clipboard;
class Clock;
class SaveQueue;
class UserDefaults;

/// Turns a frozen screen and a selection into a picture on the clipboard or in a file. Main
/// thread; encoding and writing happen on other threads, writing in the order of the calls. The
/// destructor waits for a while for pixels that are still on their way, so that quitting loses
/// nothing; it shows nothing any more. The saves themselves are waited for by the last who has
/// the queue.
class ImageOutput : public QObject
{
public:
    ImageOutput(Clipboard &clipboard, const UserDefaults &defaults, Clock &clock,
                CaptureFeedback feedback);
    ~ImageOutput() override;

    /// The selection (points of the screen's own space) out of the screen's pixels. Absent when no
    /// pixel is left of it.
    [[nodiscard]] static std::optional<Image> cropSelection(const QImage &pixels, const Rect &rect,
                                                            const Screen &screen);

    /// Crops as soon as the pixels are there, then copies. A failed crop leaves the clipboard
    /// alone and is told on the screen.
    void copySelection(const QFuture<QImage> &pixels, const Rect &rect, const Screen &screen);
    /// Takes the clipboard at once, for the PNG that the future brings, and shows the preview.
    QFuture<QByteArray> copyImage(const Image &image);

    /// A file name made of the time, in the folder that the user chose, or without a folder: in
    /// that of the default. Asks the clock: one save asks once.
    QString saveLocation() const;
    void saveSelection(const QFuture<QImage> &pixels, const Rect &rect, const Screen &screen,
                       const QString &path);
    /// Writes the file and shows preview and notification, or tells the failure on the screen, and
    /// after some time also that nothing comes of it.
    void saveImage(const Image &image, const std::optional<Screen> &screen, const QString &path);

    /// To be kept by who wants the saves to end later than this.
    std::shared_ptr<SaveQueue> saves() const { return m_saves; }

private:
    struct Written
    {
        bool isEncoded = false;
        std::optional<QString> error; ///< of writing
        QString path;
    };

    struct Progress;

    /// A result that waits for its pixels.
    struct Pending
    {
        QFuture<QImage> pixels;
        std::function<void(const QImage &)> use;
    };

    void whenThere(const QFuture<QImage> &pixels, std::function<void(const QImage &)> use);
    static Written encodeAndWrite(const QImage &bitmap, const QString &path, Progress &progress);
    void watch(const std::shared_ptr<Progress> &progress, const std::optional<Screen> &screen);
    void saved(const Image &image, const std::optional<Screen> &screen, const Written &written);
    void fail(const QString &message, const std::optional<Screen> &screen) const;
    void showPreview(const Image &image) const;

    Clipboard &m_clipboard;
    const UserDefaults &m_defaults;
    Clock &m_clock;
    CaptureFeedback m_feedback;
    std::list<Pending> m_pending; ///< oldest first
    std::shared_ptr<SaveQueue> m_saves;
    Workers m_copies; ///< not behind a save that waits for its disk
};

} // namespace tovek
