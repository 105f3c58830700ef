// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/ScreenGrabber.h"
#include "platform/x11/capture/X11Monitors.h"
#include "platform/x11/capture/X11PixelFetcher.h"
#include "platform/x11/capture/X11PixmapPool.h"

namespace tovek {

/// A display frozen in a pixmap of the server, where the overlay shows it from.
class X11FrozenDisplay : public FrozenDisplay
{
public:
    X11FrozenDisplay(std::shared_ptr<X11Pixmap> pixmap, std::shared_ptr<X11Barrier> barrier,
                     std::shared_ptr<X11PixelFetcher> fetcher);
    /// One whose pixels are here as well.
    X11FrozenDisplay(std::shared_ptr<X11Pixmap> pixmap, const QImage &image);
    /// A display whose pixels came another way; they are brought to the server.
    static std::shared_ptr<X11FrozenDisplay>
    fromImage(const std::shared_ptr<X11Connection> &connection, const QImage &image);

    QSize size() const override { return m_pixmap->size(); }
    QFuture<QImage> pixels() override;
    const std::shared_ptr<X11Pixmap> &pixmap() const { return m_pixmap; }

private:
    std::shared_ptr<X11Pixmap> m_pixmap;
    std::shared_ptr<X11Barrier> m_barrier;
    std::shared_ptr<X11PixelFetcher> m_fetcher;
    std::optional<QFuture<QImage>> m_pixels;
};

/// Freezes all monitors at one instant inside the server; the pixels stay there until somebody
/// asks for them. Windows cannot be left out of a picture here.
class X11ScreenGrabber : public ScreenGrabber
{
public:
    X11ScreenGrabber(std::shared_ptr<X11Connection> connection,
                     std::shared_ptr<X11Monitors> monitors,
                     X11PixelFetcher::Transfer transfer = X11PixelFetcher::Transfer::sharedMemory);
    void prepare() override;
    std::optional<ShareableContent> shareableContent() override;
    QFuture<Result> capture(const ShareableContent &content, const CaptureDisplay &display,
                            const std::vector<quint32> &excludedWindows) override;
    QImage captureFallback(QRect native, const std::vector<quint32> &excludedWindows) override;
    std::shared_ptr<FrozenDisplay> frozenFromImage(const QImage &image) override;

private:
    Result frozenResult(const ShareableContent &content, const CaptureDisplay &display);

    std::shared_ptr<X11Connection> m_connection;
    std::shared_ptr<X11Monitors> m_monitors;
    std::shared_ptr<X11PixelFetcher> m_fetcher;
    X11PixmapPool m_pool;
    QTimer m_release; ///< lets the fetcher go some time after the last capture
};

} // namespace tovek
