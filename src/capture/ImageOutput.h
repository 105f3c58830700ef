// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "capture/CaptureFeedback.h"

#include <QFuture>
#include <QImage>
#include <QObject>
#include <QThreadPool>

#include <list>

namespace tovek {

class Clipboard;
class Clock;
class UserDefaults;

/// Turns a frozen screen and a selection into a picture on the clipboard or in a file. Main
/// thread; encoding and writing happen on a thread that ends when it has nothing to do. Writing
/// goes on in the order of the calls. The destructor waits for it, and for a while for pixels that
/// are still on their way, so that quitting loses nothing; it shows nothing any more.
class ImageOutput : public QObject
{
public:
    ImageOutput(Clipboard &clipboard, const UserDefaults &defaults, const Clock &clock,
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

    /// The user's folder, else Downloads, else home. Asks the file system now.
    static QString saveFolder(const UserDefaults &defaults);
    /// A name in that folder, made of the time. Asks the clock: one save asks once.
    QString saveLocation() const;
    void saveSelection(const QFuture<QImage> &pixels, const Rect &rect, const Screen &screen,
                       const QString &path);
    /// Writes the file and shows preview and notification, or tells the failure on the screen.
    void saveImage(const Image &image, const std::optional<Screen> &screen, const QString &path);

private:
    struct Written
    {
        bool isEncoded = false;
        std::optional<QString> error; ///< of writing
    };

    /// A result that waits for its pixels.
    struct Pending
    {
        QFuture<QImage> pixels;
        std::function<void(const QImage &)> use;
    };

    void whenThere(const QFuture<QImage> &pixels, std::function<void(const QImage &)> use);
    static Written encodeAndWrite(const QImage &bitmap, const QString &path);
    void saved(const Image &image, const std::optional<Screen> &screen, const QString &path,
               const Written &written);
    void fail(const QString &message, const std::optional<Screen> &screen) const;
    void showPreview(const Image &image) const;

    Clipboard &m_clipboard;
    const UserDefaults &m_defaults;
    const Clock &m_clock;
    CaptureFeedback m_feedback;
    std::list<Pending> m_pending; ///< oldest first
    QThreadPool m_writers;
};

} // namespace tovek
