// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/PngEncoder.h"

#include "capture/Deflater.h"
#include "capture/RowFilter.h"

#include <QtEndian>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <thread>

namespace tovek {

namespace {

using Bytes = std::vector<uint8_t>;

/// Small enough that a strip stays in a core's cache from packing to compressing and that the
/// cores finish together, large enough that its headers do not count.
constexpr size_t stripBytes = 256 * 1024;
constexpr unsigned maxThreads = 16;
constexpr uint8_t zlibHeader[] = {0x78, 0x01};

struct Layout
{
    size_t width = 0;
    size_t height = 0;
    size_t pixelBytes = 3;
    size_t rowsPerStrip = 1;

    size_t rowBytes() const { return width * pixelBytes; }
    size_t strips() const { return (height + rowsPerStrip - 1) / rowsPerStrip; }
};

/// What one strip becomes.
struct Strip
{
    Bytes chunk; ///< a whole IDAT chunk
    uint32_t adler = 1;
    size_t rawBytes = 0;
    bool isDone = false;
};

template <typename Target>
void append32(Target &target, uint32_t value)
{
    const quint32 bigEndian = qToBigEndian(value);
    const auto *const bytes = reinterpret_cast<const char *>(&bigEndian);
    target.insert(target.end(), bytes, bytes + 4);
}

/// Length and type; the length is filled in by finishChunk.
void beginChunk(Bytes &chunk, const char *type)
{
    append32(chunk, 0);
    chunk.insert(chunk.end(), type, type + 4);
}

void finishChunk(Bytes &chunk, const Deflater &deflater)
{
    qToBigEndian(quint32(chunk.size() - 8), chunk.data());
    append32(chunk, deflater.crc32(0, chunk.data() + 4, chunk.size() - 4));
}

/// Samples in the file's order and without padding.
void packRow(const QRgb *source, const Layout &layout, uint8_t *out)
{
    if (layout.pixelBytes == 4) {
        for (size_t x = 0; x < layout.width; ++x) {
            qToBigEndian(quint32(source[x] << 8 | source[x] >> 24), out + 4 * x);
        }
        return;
    }
    // Four bytes at a time, each over the last one of the pixel before.
    for (size_t x = 0; x + 1 < layout.width; ++x)
        qToBigEndian(quint32(source[x] << 8), out + 3 * x);
    const QRgb last = source[layout.width - 1];
    uint8_t *const end = out + 3 * (layout.width - 1);
    end[0] = uint8_t(qRed(last));
    end[1] = uint8_t(qGreen(last));
    end[2] = uint8_t(qBlue(last));
}

/// One core's buffers, used for strip after strip.
class StripEncoder
{
public:
    StripEncoder(const QImage &image, const Layout &layout, const Deflater &deflater)
        : m_image(image)
        , m_layout(layout)
        , m_deflater(deflater)
        , m_packed((layout.rowsPerStrip + 1) * layout.rowBytes())
        , m_filtered(layout.rowsPerStrip * (layout.rowBytes() + 1))
    {
    }

    void encode(size_t index, Strip &strip)
    {
        const size_t firstRow = index * m_layout.rowsPerStrip;
        const size_t rows = std::min(m_layout.rowsPerStrip, m_layout.height - firstRow);
        filter(firstRow, rows);
        strip.rawBytes = rows * (m_layout.rowBytes() + 1);
        strip.adler = m_deflater.adler32(m_filtered.data(), strip.rawBytes);
        beginChunk(strip.chunk, "IDAT");
        if (index == 0)
            strip.chunk.insert(strip.chunk.end(), zlibHeader, std::end(zlibHeader));
        const bool isLast = index + 1 == m_layout.strips();
        strip.isDone = m_deflater.compress(m_filtered.data(), strip.rawBytes, isLast, strip.chunk);
        finishChunk(strip.chunk, m_deflater);
    }

private:
    /// The row above the strip lies in front of it, zeros above the first.
    void filter(size_t firstRow, size_t rows)
    {
        const size_t rowBytes = m_layout.rowBytes();
        uint8_t *const strip = m_packed.data() + rowBytes;
        if (firstRow == 0)
            std::memset(m_packed.data(), 0, rowBytes);
        else
            pack(firstRow - 1, m_packed.data());
        for (size_t row = 0; row < rows; ++row)
            pack(firstRow + row, strip + row * rowBytes);
        const RowFilter kind = chooseFilter(strip, rows, rowBytes, rowBytes, m_layout.pixelBytes);
        for (size_t row = 0; row < rows; ++row) {
            const uint8_t *const pixels = strip + row * rowBytes;
            filterRow(kind, pixels, pixels - rowBytes, rowBytes, m_layout.pixelBytes,
                      m_filtered.data() + row * (rowBytes + 1));
        }
    }

    void pack(size_t row, uint8_t *out) const
    {
        packRow(reinterpret_cast<const QRgb *>(m_image.constScanLine(int(row))), m_layout, out);
    }

    const QImage &m_image;
    const Layout &m_layout;
    const Deflater &m_deflater;
    Bytes m_packed;
    Bytes m_filtered;
};

void encodeStrips(const QImage &image, const Layout &layout, const Deflater &deflater,
                  unsigned threads, std::vector<Strip> &strips)
{
    std::atomic<size_t> next = 0;
    const auto work = [&] {
        try {
            StripEncoder encoder(image, layout, deflater);
            for (size_t index; (index = next++) < strips.size();)
                encoder.encode(index, strips[index]);
        } catch (const std::bad_alloc &) {
            next = strips.size(); // what is missing says so itself
        }
    };
    std::vector<std::thread> helpers;
    helpers.reserve(threads);
    try {
        for (unsigned i = 1; i < threads && i < strips.size(); ++i)
            helpers.emplace_back(work);
    } catch (const std::exception &) {
        // No more threads, or no memory for one: those that there are do all of it.
    }
    work();
    for (std::thread &helper : helpers)
        helper.join();
}

Bytes header(const Layout &layout, double dotsPerInch, const Deflater &deflater)
{
    static constexpr uint8_t signature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    Bytes all(signature, std::end(signature));
    Bytes chunk;
    beginChunk(chunk, "IHDR");
    append32(chunk, uint32_t(layout.width));
    append32(chunk, uint32_t(layout.height));
    const uint8_t colorType = layout.pixelBytes == 4 ? 6 : 2;
    chunk.insert(chunk.end(), {8, colorType, 0, 0, 0});
    finishChunk(chunk, deflater);
    all.insert(all.end(), chunk.begin(), chunk.end());
    if (dotsPerInch <= 0)
        return all;
    constexpr double metresPerInch = 0.0254;
    const auto density = uint32_t(std::lround(dotsPerInch / metresPerInch));
    chunk.clear();
    beginChunk(chunk, "pHYs");
    append32(chunk, density);
    append32(chunk, density);
    chunk.push_back(1); // per metre
    finishChunk(chunk, deflater);
    all.insert(all.end(), chunk.begin(), chunk.end());
    return all;
}

/// The check of the whole stream and the end of the file.
Bytes trailer(const std::vector<Strip> &strips, const Deflater &deflater)
{
    uint32_t adler = 1;
    for (const Strip &strip : strips)
        adler = adler32Combine(adler, strip.adler, strip.rawBytes);
    Bytes all;
    beginChunk(all, "IDAT");
    append32(all, adler);
    finishChunk(all, deflater);
    Bytes end;
    beginChunk(end, "IEND");
    finishChunk(end, deflater);
    all.insert(all.end(), end.begin(), end.end());
    return all;
}

QByteArray joined(const Bytes &head, const std::vector<Strip> &strips, const Bytes &tail)
{
    size_t size = head.size() + tail.size();
    for (const Strip &strip : strips)
        size += strip.chunk.size();
    QByteArray png(qsizetype(size), Qt::Uninitialized);
    char *out = std::copy(head.begin(), head.end(), png.data());
    for (const Strip &strip : strips)
        out = std::copy(strip.chunk.begin(), strip.chunk.end(), out);
    std::copy(tail.begin(), tail.end(), out);
    return png;
}

QByteArray encode(const QImage &image, const PngOptions &options)
{
    const Deflater &deflater = options.deflater ? *options.deflater : fastestDeflater();
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    Layout layout{size_t(image.width()), size_t(image.height())};
    layout.pixelBytes = image.hasAlphaChannel() ? 4 : 3;
    layout.rowsPerStrip = std::clamp<size_t>(stripBytes / layout.rowBytes(), 1, layout.height);
    std::vector<Strip> strips(layout.strips());
    encodeStrips(image, layout, deflater,
                 std::min(options.threads ? options.threads : cores, maxThreads), strips);
    if (!std::all_of(strips.begin(), strips.end(), [](const Strip &s) { return s.isDone; }))
        return {};
    return joined(header(layout, options.dotsPerInch, deflater), strips, trailer(strips, deflater));
}

} // namespace

QByteArray encodePng(const QImage &image, const PngOptions &options)
{
    if (image.isNull())
        return {};
    try {
        const auto format = image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32;
        return encode(image.format() == format ? image : image.convertToFormat(format), options);
    } catch (const std::exception &) {
        return {};
    }
}

double dotsPerInch(const Image &image)
{
    if (image.isEmpty() || image.size.width <= 0)
        return 0;
    // Sizes in points come from dividing pixels by a scale, so that 1.5 may be 1.4999999999999998.
    constexpr double tolerance = 1e-6;
    const double tenths = std::floor(image.bitmap.width() / image.size.width * 10 + tolerance);
    return tenths / 10 * 72;
}

} // namespace tovek
