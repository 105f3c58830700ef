// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/capture/X11ScreenGrabber.h"

#include "foundation/Log.h"
#include "foundation/WhenReady.h"
#include "platform/x11/X11PixelFormat.h"
#include "platform/x11/X11Requests.h"
#include "platform/x11/capture/X11SharedMemory.h"

#include <algorithm>
#include <cstring>
#include <map>

namespace tovek {

namespace {

/// All monitors at one instant.
struct X11Snapshot
{
    std::map<quint32, std::shared_ptr<X11Pixmap>> pixmaps;
    std::shared_ptr<X11Barrier> barrier;
};

/// Through memory that the server sees as well: the socket takes several times as long. False where
/// the server has no such memory.
bool putShared(const X11Connection &connection, xcb_pixmap_t pixmap, const QImage &image)
{
    xcb_connection_t *xcb = connection.xcb();
    if (!x11SharesMemory(xcb))
        return false;
    const qsizetype bytesPerLine = (qsizetype(image.width()) * image.depth() + 31) / 32 * 4;
    auto memory = X11SharedMemory::create(xcb, bytesPerLine * image.height());
    if (!memory)
        return false;
    for (int y = 0; y < image.height(); ++y)
        std::memcpy(memory->data() + y * bytesPerLine, image.constScanLine(y),
                    size_t(bytesPerLine));
    const auto width = uint16_t(image.width());
    const auto height = uint16_t(image.height());
    xcb_shm_put_image(xcb, pixmap, connection.copyGc(), width, height, 0, 0, width, height, 0, 0,
                      connection.screen().root_depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0,
                      memory->segment(), 0);
    memory->detach(xcb);
    return true;
}

void putPixels(const X11Connection &connection, xcb_pixmap_t pixmap, const QImage &image)
{
    if (putShared(connection, pixmap, image))
        return;
    // Its lines must stand one behind the other.
    const bool isPart = image.bytesPerLine() > (image.width() * image.depth() + 31) / 32 * 4;
    x11PutImage(connection.xcb(), pixmap, connection.copyGc(), connection.screen().root_depth,
                isPart ? image.copy() : image);
}

std::vector<QSize> sizesOf(const std::vector<X11Monitor> &monitors)
{
    std::vector<QSize> sizes;
    for (const X11Monitor &monitor : monitors)
        sizes.push_back(monitor.native.size());
    return sizes;
}

} // namespace

X11FrozenDisplay::X11FrozenDisplay(std::shared_ptr<X11Pixmap> pixmap,
                                   std::shared_ptr<X11Barrier> barrier,
                                   std::shared_ptr<X11PixelFetcher> fetcher)
    : m_pixmap(std::move(pixmap))
    , m_barrier(std::move(barrier))
    , m_fetcher(std::move(fetcher))
{
}

X11FrozenDisplay::X11FrozenDisplay(std::shared_ptr<X11Pixmap> pixmap, const QImage &image)
    : m_pixmap(std::move(pixmap))
    , m_pixels(readyFuture(image.convertToFormat(QImage::Format_RGB32)))
{
}

std::shared_ptr<X11FrozenDisplay>
X11FrozenDisplay::fromImage(const std::shared_ptr<X11Connection> &connection, const QImage &image)
{
    const auto pixmap = std::make_shared<X11Pixmap>(connection, image.size());
    const xcb_setup_t *setup = xcb_get_setup(connection->xcb());
    const X11PixelFormat format = x11RootFormat(*setup, connection->screen());
    if (format.format != QImage::Format_Invalid && pixmap->error().isEmpty())
        putPixels(*connection, pixmap->id(), image.convertToFormat(format.format));
    return std::make_shared<X11FrozenDisplay>(pixmap, image);
}

QFuture<QImage> X11FrozenDisplay::pixels()
{
    // The server still has what could not be brought over the last time.
    const bool isLost = m_pixels && m_pixels->isFinished()
        && (m_pixels->resultCount() == 0 || m_pixels->result().isNull());
    if (!m_pixels || (isLost && m_fetcher))
        m_pixels = m_fetcher->fetch(m_pixmap, m_barrier);
    return *m_pixels;
}

X11ScreenGrabber::X11ScreenGrabber(std::shared_ptr<X11Connection> connection,
                                   std::shared_ptr<X11Monitors> monitors,
                                   X11PixelFetcher::Transfer transfer)
    : m_connection(std::move(connection))
    , m_monitors(std::move(monitors))
    , m_fetcher(std::make_shared<X11PixelFetcher>(m_connection, transfer))
    , m_pool(m_connection)
{
    m_release.setSingleShot(true);
    m_release.setInterval(2000);
    m_release.callOnTimeout([this] { m_fetcher->release(); });
}

void X11ScreenGrabber::prepare()
{
    if (!m_connection->xcb())
        return;
    const std::vector<QSize> sizes = sizesOf(m_monitors->list());
    m_pool.prepare(sizes);
    m_fetcher->prepare(sizes);
    m_release.start();
}

std::optional<ShareableContent> X11ScreenGrabber::shareableContent()
{
    const std::vector<X11Monitor> &monitors = m_monitors->list();
    xcb_connection_t *xcb = m_connection->xcb();
    if (monitors.empty() || !xcb)
        return std::nullopt;

    ShareableContent content;
    const auto snapshot = std::make_shared<X11Snapshot>();
    for (const X11Monitor &monitor : monitors) {
        content.displays.push_back({monitor.id, monitor.native});
        snapshot->pixmaps[monitor.id] = m_pool.take(monitor.native.size());
    }
    // Nobody else draws between the first monitor's copy and the last one's.
    xcb_grab_server(xcb);
    for (const X11Monitor &monitor : monitors)
        x11Copy(*m_connection, m_connection->root(), snapshot->pixmaps[monitor.id]->id(),
                monitor.native, {});
    xcb_ungrab_server(xcb);
    snapshot->barrier = std::make_shared<X11Barrier>(m_connection);
    m_connection->flush();
    content.snapshot = snapshot;
    m_release.start();
    return content;
}

QFuture<ScreenGrabber::Result>
X11ScreenGrabber::capture(const ShareableContent &content, const CaptureDisplay &display,
                          const std::vector<quint32> &excludedWindows)
{
    if (!excludedWindows.empty())
        return readyFuture(Result{nullptr, QStringLiteral("windows cannot be left out")});
    return readyFuture(frozenResult(content, display));
}

ScreenGrabber::Result X11ScreenGrabber::frozenResult(const ShareableContent &content,
                                                     const CaptureDisplay &display)
{
    const auto *snapshot = static_cast<X11Snapshot *>(content.snapshot.get());
    if (!snapshot || !snapshot->pixmaps.contains(display.displayId))
        return {nullptr, QStringLiteral("the display is not part of the content")};
    const std::shared_ptr<X11Pixmap> &pixmap = snapshot->pixmaps.at(display.displayId);
    if (const QString error = pixmap->error(); !error.isEmpty())
        return {nullptr, error};
    return {std::make_shared<X11FrozenDisplay>(pixmap, snapshot->barrier, m_fetcher), {}};
}

QImage X11ScreenGrabber::captureFallback(QRect native, const std::vector<quint32> &excludedWindows)
{
    if (!excludedWindows.empty()) {
        logLine(QStringLiteral("Could not grab the desktop: windows cannot be left out"));
        return {};
    }
    return x11GrabRoot(native);
}

std::shared_ptr<FrozenDisplay> X11ScreenGrabber::frozenFromImage(const QImage &image)
{
    return X11FrozenDisplay::fromImage(m_connection, image);
}

} // namespace tovek
