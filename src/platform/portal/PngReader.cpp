// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PngReader.h"

#include "platform/portal/PngRow.h"

#include <QtGlobal>

#include <algorithm>
#include <cstring>
#include <zlib.h>

namespace tovek {

namespace {

constexpr std::array<uint8_t, 8> pngSignature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
constexpr size_t headerBytes = 13;
constexpr uint8_t opaqueColors = 2;
constexpr uint8_t colorsWithOpacity = 6;
constexpr uint32_t longestChunk = 0x7fffffff;
constexpr uint32_t longestSide = 1 << 20;
/// So much is inflated before its filters are taken off: it stays in the processor's cache.
constexpr size_t bytesAtOnce = 128 * 1024;

uint32_t numberAt(const uint8_t *bytes)
{
    return uint32_t(bytes[0]) << 24 | uint32_t(bytes[1]) << 16 | uint32_t(bytes[2]) << 8 | bytes[3];
}

constexpr uint32_t chunkType(const char (&name)[5])
{
    return uint32_t(name[0]) << 24 | uint32_t(name[1]) << 16 | uint32_t(name[2]) << 8
        | uint32_t(name[3]);
}

constexpr uint32_t headerType = chunkType("IHDR");
constexpr uint32_t pixelsType = chunkType("IDAT");
constexpr uint32_t paletteType = chunkType("PLTE"); // here no more than advice
constexpr uint32_t endType = chunkType("IEND");

/// A chunk that a reader may pass over without knowing it.
bool isAncillary(uint32_t type)
{
    return type & 0x20000000;
}

} // namespace

void PngReader::EndInflating::operator()(z_stream_s *stream) const
{
    inflateEnd(stream);
    delete stream;
}

PngReader::PngReader(qint64 mostBytes) : m_mostBytes(mostBytes) { }

PngReader::~PngReader() = default;

void PngReader::add(std::span<const uint8_t> bytes)
{
    while (m_state == State::reading && !bytes.empty()) {
        switch (m_step) {
        case Step::signature:
            if (!gather(bytes, pngSignature.size()))
                return;
            if (!std::equal(pngSignature.begin(), pngSignature.end(), m_small.begin()))
                m_state = State::refused;
            m_step = Step::head;
            break;
        case Step::head:
            if (gather(bytes, 8))
                readHead();
            break;
        case Step::body: {
            const size_t count = std::min<size_t>(m_bodyLeft, bytes.size());
            takeBody(bytes.first(count));
            bytes = bytes.subspan(count);
            break;
        }
        case Step::sum:
            if (gather(bytes, 4))
                endChunk();
            break;
        }
    }
    if (m_state == State::whole && !bytes.empty())
        m_state = State::refused;
    if (m_state == State::reading && m_stream)
        inflateAdded();
}

/// True once so many bytes are in `m_small`.
bool PngReader::gather(std::span<const uint8_t> &bytes, size_t count)
{
    const size_t part = std::min(count - m_gathered, bytes.size());
    std::copy_n(bytes.begin(), part, m_small.begin() + ptrdiff_t(m_gathered));
    bytes = bytes.subspan(part);
    m_gathered += part;
    if (m_gathered < count)
        return false;
    m_gathered = 0;
    return true;
}

void PngReader::readHead()
{
    m_bodyLeft = numberAt(m_small.data());
    m_type = numberAt(m_small.data() + 4);
    m_sum = uint32_t(crc32(0, m_small.data() + 4, 4));
    m_step = m_bodyLeft > 0 ? Step::body : Step::sum;
    if (m_bodyLeft > longestChunk || !isInOrder())
        m_state = State::refused;
}

bool PngReader::isInOrder()
{
    if (m_type == headerType)
        return m_order == Order::header && m_bodyLeft == headerBytes;
    if (m_order == Order::header)
        return false;
    if (m_type == pixelsType) {
        const bool isExpected = m_order != Order::afterPixels;
        m_order = Order::inPixels;
        return isExpected;
    }
    // Those of pixels stand one behind the other.
    if (m_order == Order::inPixels)
        m_order = Order::afterPixels;
    return m_type == endType ? m_bodyLeft == 0 : m_type == paletteType || isAncillary(m_type);
}

void PngReader::takeBody(std::span<const uint8_t> bytes)
{
    m_sum = uint32_t(crc32(m_sum, bytes.data(), uInt(bytes.size())));
    m_bodyLeft -= uint32_t(bytes.size());
    if (m_bodyLeft == 0)
        m_step = Step::sum;
    if (m_type == pixelsType)
        m_packed.insert(m_packed.end(), bytes.begin(), bytes.end());
    else if (m_type == headerType && gather(bytes, headerBytes) && !readHeader())
        m_state = State::refused;
}

bool PngReader::readHeader()
{
    m_order = Order::beforePixels;
    const uint32_t width = numberAt(m_small.data());
    const uint32_t height = numberAt(m_small.data() + 4);
    const uint8_t *kind = m_small.data() + 8; // bits, colours, packing, filters, interlacing
    const bool isKnown = kind[0] == 8 && (kind[1] == opaqueColors || kind[1] == colorsWithOpacity)
        && kind[2] == 0 && kind[3] == 0 && kind[4] == 0;
    if (!isKnown || width == 0 || height == 0 || width > longestSide || height > longestSide
        || qint64(width) * height * 4 > m_mostBytes)
        return false;
    m_image = QImage(int(width), int(height), QImage::Format_RGB32);
    std::unique_ptr<z_stream> stream(new z_stream{});
    if (m_image.isNull() || inflateInit(stream.get()) != Z_OK)
        return false;
    m_pixels = m_image.bits();
    m_stream.reset(stream.release());
    m_pixelBytes = kind[1] == opaqueColors ? 3 : 4;
    m_stride = 1 + width * m_pixelBytes;
    m_rows.resize(m_stride + std::max(m_stride, bytesAtOnce) + pngRowPadding);
    return true;
}

void PngReader::endChunk()
{
    if (numberAt(m_small.data()) != m_sum) {
        m_state = State::refused;
    } else if (m_type == endType) {
        inflateAdded();
        if (m_state == State::reading)
            m_state = m_isInflated && m_filled == 0 && m_nextRow == m_image.height()
                ? State::whole
                : State::refused;
    }
    m_step = Step::head;
}

void PngReader::inflateAdded()
{
    m_stream->next_in = m_packed.data();
    m_stream->avail_in = uInt(m_packed.size());
    do {
        const size_t room = m_rows.size() - pngRowPadding - m_stride - m_filled;
        m_stream->next_out = m_rows.data() + m_stride + m_filled;
        m_stream->avail_out = uInt(room);
        // After the end it has an error for all that is added.
        const int result = inflate(m_stream.get(), Z_NO_FLUSH);
        m_isInflated |= result == Z_STREAM_END;
        m_filled += room - m_stream->avail_out;
        const bool isFine = result == Z_OK || result == Z_STREAM_END
            || (result == Z_BUF_ERROR && m_stream->avail_in == 0);
        if (!isFine || !takeRows())
            m_state = State::refused;
    } while (m_state == State::reading && !m_isInflated
             && (m_stream->avail_in > 0 || m_stream->avail_out == 0));
    if (m_stream->avail_in > 0)
        m_state = State::refused;
    m_packed.clear();
}

/// Moves whole rows into the picture.
bool PngReader::takeRows()
{
    const size_t rowBytes = m_stride - 1;
    uint8_t *above = m_rows.data() + 1;
    for (; m_filled >= m_stride; m_filled -= m_stride) {
        uint8_t *row = above + m_stride;
        if (m_nextRow == m_image.height()
            || !unfilterRow(row[-1], row, above, rowBytes, m_pixelBytes))
            return false;
        auto *out = reinterpret_cast<uint32_t *>(m_pixels + m_nextRow * m_image.bytesPerLine());
        rowToRgb32(row, size_t(m_image.width()), m_pixelBytes, out);
        ++m_nextRow;
        above = row;
    }
    std::memmove(m_rows.data(), above - 1, m_stride + m_filled);
    return true;
}

} // namespace tovek
