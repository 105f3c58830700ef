// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/capture/X11PixelFetcher.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "platform/x11/X11Connect.h"
#include "platform/x11/X11PixelFormat.h"
#include "platform/x11/capture/X11SharedMemory.h"

#include <QCoreApplication>
#include <QPromise>

#include <algorithm>
#include <new>
#include <sys/mman.h>

namespace tovek {

namespace {

using Connection = std::unique_ptr<xcb_connection_t, X11Disconnect>;

struct Mapping
{
    void *data;
    size_t bytes;
};

void unmap(void *info)
{
    auto *mapping = static_cast<Mapping *>(info);
    munmap(mapping->data, mapping->bytes);
    delete mapping;
}

Connection connectAgain()
{
    Connection connection(x11Connect());
    return xcb_connection_has_error(connection.get()) ? nullptr : std::move(connection);
}

X11PixelFormat rootFormat(xcb_connection_t *connection)
{
    const xcb_setup_t *setup = xcb_get_setup(connection);
    return x11RootFormat(*setup, *xcb_setup_roots_iterator(setup).data);
}

/// The image borrows the reply's memory and frees it with itself.
QImage imageFromReply(X11Reply<xcb_get_image_reply_t> reply, QSize size,
                      const X11PixelFormat &format)
{
    const qsizetype bytesPerLine = format.bytesPerLine(size.width());
    if (xcb_get_image_data_length(reply.get()) < bytesPerLine * size.height())
        return {};
    uchar *data = xcb_get_image_data(reply.get());
    return QImage(
        data, size.width(), size.height(), bytesPerLine, format.format,
        [](void *memory) { std::free(memory); }, reply.release());
}

QImage grabByReply(xcb_connection_t *connection, xcb_drawable_t drawable, QRect rect,
                   QString *problem)
{
    const X11PixelFormat format = rootFormat(connection);
    if (format.format == QImage::Format_Invalid) {
        *problem = QStringLiteral("unknown pixel layout of %1 bits").arg(format.bitsPerPixel);
        return {};
    }
    const auto cookie =
        xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, int16_t(rect.x()),
                      int16_t(rect.y()), uint16_t(rect.width()), uint16_t(rect.height()), ~0u);
    xcb_generic_error_t *error = nullptr;
    X11Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(connection, cookie, &error));
    const X11Reply<xcb_generic_error_t> owned(error);
    if (!reply) {
        *problem = owned ? x11ErrorText(*owned) : QStringLiteral("no answer from the X server");
        return {};
    }
    return toRgb32(imageFromReply(std::move(reply), rect.size(), format));
}

} // namespace

X11Barrier::X11Barrier(std::shared_ptr<X11Connection> connection)
    : m_connection(std::move(connection))
    , m_xcb(m_connection->xcb())
    , m_cookie(xcb_get_input_focus(m_xcb))
{
}

X11Barrier::~X11Barrier()
{
    if (!m_hasWaited && m_connection->xcb())
        xcb_discard_reply(m_xcb, m_cookie.sequence);
}

void X11Barrier::wait()
{
    std::call_once(m_once, [this] {
        m_hasWaited = true;
        const X11Reply<xcb_get_input_focus_reply_t> passed(
            xcb_get_input_focus_reply(m_xcb, m_cookie, nullptr));
    });
}

/// What the pool's thread owns.
struct X11PixelFetcher::Worker
{
    explicit Worker(Transfer way) : transfer(way) { }

    bool open()
    {
        // Without memory for an answer, too, a connection is lost.
        if (connection && xcb_connection_has_error(connection.get()))
            close();
        if (connection)
            return true;
        connection = connectAgain();
        sharesMemory =
            connection && transfer == Transfer::sharedMemory && x11SharesMemory(connection.get());
        return bool(connection);
    }
    void close()
    {
        segments.clear();
        connection.reset();
    }
    std::optional<X11SharedMemory> takeSegment(qsizetype bytes)
    {
        const auto ready = std::find_if(segments.begin(), segments.end(),
                                        [bytes](const auto &s) { return s.bytes() == bytes; });
        if (ready == segments.end())
            return X11SharedMemory::create(connection.get(), bytes);
        std::optional<X11SharedMemory> segment(std::move(*ready));
        segments.erase(ready);
        return segment;
    }
    void prepare(const std::vector<QSize> &sizes);
    QImage fetch(xcb_drawable_t drawable, QSize size, xcb_connection_t *spare);
    QImage fetchShared(xcb_drawable_t drawable, QSize size);

    const Transfer transfer;
    bool sharesMemory = false;
    Connection connection;
    std::vector<X11SharedMemory> segments;
};

void X11PixelFetcher::Worker::prepare(const std::vector<QSize> &sizes)
{
    if (!open() || !sharesMemory)
        return;
    const X11PixelFormat format = rootFormat(connection.get());
    std::vector<X11SharedMemory> ready;
    for (const QSize size : sizes) {
        auto segment = takeSegment(format.bytesPerLine(size.width()) * size.height());
        if (!segment)
            continue;
        // A copy that nobody looks at, so that the server's mapping is populated too.
        const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data;
        const auto cookie = xcb_shm_get_image(connection.get(), screen->root, 0, 0,
                                              uint16_t(size.width()), uint16_t(size.height()), ~0u,
                                              XCB_IMAGE_FORMAT_Z_PIXMAP, segment->segment(), 0);
        xcb_generic_error_t *error = nullptr;
        const X11Reply<xcb_shm_get_image_reply_t> copied(
            xcb_shm_get_image_reply(connection.get(), cookie, &error));
        std::free(error);
        ready.push_back(std::move(*segment));
    }
    segments = std::move(ready);
}

QImage X11PixelFetcher::Worker::fetch(xcb_drawable_t drawable, QSize size, xcb_connection_t *spare)
{
    const bool isOpen = open();
    if (!isOpen && !spare) {
        logLine(QStringLiteral("Could not fetch the pixels: no connection to the X server"));
        return {};
    }
    if (isOpen && sharesMemory) {
        if (QImage image = fetchShared(drawable, size); !image.isNull())
            return image;
    }
    QString problem;
    const QImage image =
        grabByReply(isOpen ? connection.get() : spare, drawable, QRect(QPoint(), size), &problem);
    if (image.isNull())
        logLine(QStringLiteral("Could not fetch the pixels: ") + problem);
    return image;
}

QImage X11PixelFetcher::Worker::fetchShared(xcb_drawable_t drawable, QSize size)
{
    const X11PixelFormat format = rootFormat(connection.get());
    const qsizetype bytesPerLine = format.bytesPerLine(size.width());
    if (format.format == QImage::Format_Invalid)
        return {};
    auto segment = takeSegment(bytesPerLine * size.height());
    if (!segment)
        return {};
    const auto cookie = xcb_shm_get_image(connection.get(), drawable, 0, 0, uint16_t(size.width()),
                                          uint16_t(size.height()), ~0u, XCB_IMAGE_FORMAT_Z_PIXMAP,
                                          segment->segment(), 0);
    xcb_generic_error_t *error = nullptr;
    const X11Reply<xcb_shm_get_image_reply_t> reply(
        xcb_shm_get_image_reply(connection.get(), cookie, &error));
    std::free(error);
    segment->detach(connection.get());
    xcb_flush(connection.get());
    if (!reply)
        return {};
    const qsizetype bytes = segment->bytes();
    uchar *data = segment->release();
    // The image owns the mapping; QImage takes a plain pointer for that.
    return toRgb32(QImage(data, size.width(), size.height(), bytesPerLine, format.format, unmap,
                          new Mapping{data, size_t(bytes)}));
}

X11PixelFetcher::X11PixelFetcher(std::shared_ptr<X11Connection> connection, Transfer transfer)
    : m_connection(std::move(connection))
    , m_worker(std::make_unique<Worker>(transfer))
    , m_pool(1, std::chrono::seconds(1))
{
}

X11PixelFetcher::~X11PixelFetcher() = default;

void X11PixelFetcher::prepare(const std::vector<QSize> &sizes)
{
    Q_ASSERT(isMainThread());
    m_pool.start([this, sizes] { m_worker->prepare(sizes); });
}

QFuture<QImage> X11PixelFetcher::fetch(std::shared_ptr<X11Pixmap> pixmap,
                                       std::shared_ptr<X11Barrier> barrier)
{
    Q_ASSERT(isMainThread());
    auto promise = std::make_shared<QPromise<QImage>>();
    promise->start();
    // Servers take 256 clients by default; where there are so many, the toolkit's connection does.
    xcb_connection_t *const spare = m_connection->xcb();
    const bool isStarted = m_pool.start([this, promise, pixmap, barrier, spare]() mutable {
        barrier->wait();
        QImage image;
        try {
            image = m_worker->fetch(pixmap->id(), pixmap->size(), spare);
        } catch (const std::bad_alloc &) {
            logLine(QStringLiteral("Could not fetch the pixels: not enough memory"));
        }
        promise->addResult(image);
        promise->finish();
        // The last owner of a pixmap frees it, which belongs to the main thread.
        if (qApp)
            QMetaObject::invokeMethod(
                qApp, [kept = std::move(pixmap), barrier = std::move(barrier)] {},
                Qt::QueuedConnection);
    });
    if (!isStarted) {
        promise->addResult(QImage());
        promise->finish();
    }
    return promise->future();
}

void X11PixelFetcher::release()
{
    Q_ASSERT(isMainThread());
    m_pool.start([this] { m_worker->close(); });
}

QImage x11GrabRoot(QRect native)
{
    const Connection connection = connectAgain();
    QString problem = QStringLiteral("no connection to the X server");
    QImage image;
    if (connection) {
        const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data;
        image = grabByReply(connection.get(), screen->root, native, &problem);
    }
    if (image.isNull())
        logLine(QStringLiteral("Could not grab the desktop: ") + problem);
    return image;
}

} // namespace tovek
