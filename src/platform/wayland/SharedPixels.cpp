// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/SharedPixels.h"

#include "foundation/Log.h"

#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace tovek {

SharedPixels::SharedPixels(int file, uchar *data, QSize size, qsizetype bytesPerLine)
    : m_file(file)
    , m_data(data)
    , m_size(size)
    , m_bytesPerLine(bytesPerLine)
{
}

std::shared_ptr<SharedPixels> SharedPixels::create(QSize size, qsizetype bytesPerLine)
{
    const size_t bytes = size_t(bytesPerLine) * size_t(std::max(size.height(), 0));
    const int file = memfd_create("tovek", MFD_CLOEXEC);
    void *data = MAP_FAILED;
    if (file >= 0 && bytes > 0 && ftruncate(file, off_t(bytes)) == 0)
        data = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (data != MAP_FAILED)
        return std::shared_ptr<SharedPixels>(
            new SharedPixels(file, static_cast<uchar *>(data), size, bytesPerLine));
    if (file >= 0)
        close(file);
    logLine(QStringLiteral("No memory for a picture of %1 x %2 pixels")
                .arg(size.width())
                .arg(size.height()));
    return nullptr;
}

std::shared_ptr<SharedPixels> SharedPixels::create(QSize size)
{
    return create(size, qsizetype(size.width()) * 4);
}

std::shared_ptr<SharedPixels> SharedPixels::fromImage(const QImage &image)
{
    const QImage rgb = image.convertToFormat(QImage::Format_RGB32);
    auto pixels = create(rgb.size());
    for (int y = 0; pixels && y < rgb.height(); ++y)
        std::memcpy(pixels->data() + y * pixels->bytesPerLine(), rgb.constScanLine(y),
                    size_t(pixels->bytesPerLine()));
    return pixels;
}

SharedPixels::~SharedPixels()
{
    munmap(m_data, size_t(bytes()));
    close(m_file);
}

QImage SharedPixels::image(const std::shared_ptr<SharedPixels> &pixels, QImage::Format format)
{
    // The image calls this when its last copy goes; it takes a plain pointer for that.
    auto *owner = new std::shared_ptr<SharedPixels>(pixels);
    return QImage(
        pixels->data(), pixels->size().width(), pixels->size().height(), pixels->bytesPerLine(),
        format, [](void *kept) { delete static_cast<std::shared_ptr<SharedPixels> *>(kept); },
        owner);
}

wl_buffer *SharedPixels::makeBuffer(wl_shm *shm, uint32_t format) const
{
    wl_shm_pool *pool = wl_shm_create_pool(shm, m_file, int32_t(bytes()));
    wl_buffer *buffer = wl_shm_pool_create_buffer(pool, 0, m_size.width(), m_size.height(),
                                                  int32_t(m_bytesPerLine), format);
    wl_shm_pool_destroy(pool);
    return buffer;
}

void SharedPixels::populate()
{
    madvise(m_data, size_t(bytes()), MADV_POPULATE_WRITE);
}

} // namespace tovek
