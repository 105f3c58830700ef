// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

#include <memory>
#include <wayland-client.h>

namespace tovek {

/// Pixels in memory that the compositor reads or writes too, without padding at the end of a row.
/// Any thread.
class SharedPixels
{
public:
    /// All zero. Null, with one log line, when there is no memory.
    static std::shared_ptr<SharedPixels> create(QSize size, qsizetype bytesPerLine);
    /// As Format_RGB32.
    static std::shared_ptr<SharedPixels> create(QSize size);
    static std::shared_ptr<SharedPixels> fromImage(const QImage &image);
    ~SharedPixels();
    SharedPixels(const SharedPixels &) = delete;
    SharedPixels &operator=(const SharedPixels &) = delete;

    QSize size() const { return m_size; }
    qsizetype bytesPerLine() const { return m_bytesPerLine; }
    uchar *data() const { return m_data; }
    /// An image over the memory itself, which it keeps alive.
    static QImage image(const std::shared_ptr<SharedPixels> &pixels, QImage::Format format);
    /// The same memory for the compositor; the caller destroys it.
    wl_buffer *makeBuffer(wl_shm *shm, uint32_t format) const;
    /// Has the memory made now rather than at the first write.
    void populate();

private:
    SharedPixels(int file, uchar *data, QSize size, qsizetype bytesPerLine);
    qsizetype bytes() const { return m_bytesPerLine * m_size.height(); }

    int m_file;
    uchar *m_data;
    QSize m_size;
    qsizetype m_bytesPerLine;
};

} // namespace tovek
