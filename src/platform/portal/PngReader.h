// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

#include <array>
#include <memory>
#include <span>
#include <vector>

struct z_stream_s;

namespace tovek {

/// Reads a PNG while it is still being written, so that it is there as soon as its last byte.
/// Knows what desktops write of their screens, red, green and blue in bytes, with or without
/// opacity, which it drops. It refuses all else, and what is damaged: whoever wants to know more
/// asks a reader of all kinds. One thread at a time.
class PngReader
{
public:
    enum class State { reading, whole, refused };

    /// `mostBytes`: of memory for the pixels.
    explicit PngReader(qint64 mostBytes);
    ~PngReader();

    /// What comes next in the file; nothing may follow the picture.
    void add(std::span<const uint8_t> bytes);
    State state() const { return m_state; }
    /// Format_RGB32, of which `rows` are there, from the top. Copies of it get the others as well.
    const QImage &image() const { return m_image; }
    int rows() const { return m_nextRow; }

private:
    struct EndInflating
    {
        void operator()(z_stream_s *stream) const;
    };

    bool gather(std::span<const uint8_t> &bytes, size_t count);
    void readHead();
    void takeBody(std::span<const uint8_t> bytes);
    bool isInOrder();
    bool readHeader();
    void endChunk();
    void inflateAdded();
    bool takeRows();

    const qint64 m_mostBytes;
    State m_state = State::reading;
    enum class Step { signature, head, body, sum } m_step = Step::signature;
    std::array<uint8_t, 13> m_small{}; ///< what was gathered of something short
    size_t m_gathered = 0;

    uint32_t m_type = 0; ///< of the chunk
    uint32_t m_bodyLeft = 0;
    uint32_t m_sum = 0;
    enum class Order { header, beforePixels, inPixels, afterPixels } m_order = Order::header;

    std::unique_ptr<z_stream_s, EndInflating> m_stream; ///< null before the header
    bool m_isInflated = false; ///< to its end
    std::vector<uint8_t> m_packed; ///< added, and not inflated yet
    std::vector<uint8_t> m_rows; ///< the last one without its filter, then those to come
    size_t m_filled = 0; ///< bytes of those to come
    size_t m_pixelBytes = 0, m_stride = 0; ///< with the filter's byte
    int m_nextRow = 0;
    QImage m_image;
    uchar *m_pixels = nullptr; ///< the image's: written to otherwise, it would leave its copies
};

} // namespace tovek
