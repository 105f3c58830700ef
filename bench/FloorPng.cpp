// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "FloorPng.h"

#include "capture/RowFilter.h"

#include <atomic>
#include <cstring>
#include <libdeflate.h>
#include <memory>
#include <thread>
#include <vector>

namespace tovek::bench {

namespace {

using Bytes = std::vector<uint8_t>;
constexpr size_t stripBytes = 256 * 1024;
constexpr int level = 1;

void packRow(const QRgb *source, size_t width, uint8_t *out)
{
    for (size_t x = 0; x < width; ++x, out += 3) {
        out[0] = uint8_t(qRed(source[x]));
        out[1] = uint8_t(qGreen(source[x]));
        out[2] = uint8_t(qBlue(source[x]));
    }
}

/// Compresses strip after strip until none is left.
void work(const QImage &image, size_t rowsPerStrip, std::atomic<size_t> &next,
          std::vector<Bytes> &strips)
{
    const size_t width = size_t(image.width());
    const size_t rowBytes = 3 * width;
    Bytes packed((rowsPerStrip + 1) * rowBytes);
    Bytes filtered(rowsPerStrip * (rowBytes + 1));
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(level), &libdeflate_free_compressor);
    for (size_t index; (index = next++) < strips.size();) {
        const size_t first = index * rowsPerStrip;
        const size_t rows = std::min(rowsPerStrip, size_t(image.height()) - first);
        for (size_t row = 0; row <= rows; ++row) {
            uint8_t *const out = packed.data() + row * rowBytes;
            if (first + row == 0)
                std::memset(out, 0, rowBytes);
            else
                packRow(reinterpret_cast<const QRgb *>(image.constScanLine(int(first + row - 1))),
                        width, out);
        }
        const uint8_t *const pixels = packed.data() + rowBytes;
        const RowFilter filter = chooseFilter(pixels, rows, rowBytes, rowBytes, 3);
        for (size_t row = 0; row < rows; ++row) {
            filterRow(filter, pixels + row * rowBytes, pixels + row * rowBytes - rowBytes, rowBytes,
                      3, filtered.data() + row * (rowBytes + 1));
        }
        const size_t size = rows * (rowBytes + 1);
        Bytes &strip = strips[index];
        strip.resize(libdeflate_deflate_compress_bound(compressor.get(), size));
        strip.resize(libdeflate_deflate_compress(compressor.get(), filtered.data(), size,
                                                 strip.data(), strip.size()));
    }
}

} // namespace

QByteArray floorPng(const QImage &image)
{
    constexpr qsizetype frameBytes = 57; // signature, IHDR, one IDAT header, IEND
    const size_t rowsPerStrip = std::max<size_t>(1, stripBytes / (3 * size_t(image.width())));
    std::vector<Bytes> strips((size_t(image.height()) + rowsPerStrip - 1) / rowsPerStrip);
    std::atomic<size_t> next = 0;
    std::vector<std::thread> helpers;
    for (unsigned i = 1; i < std::thread::hardware_concurrency(); ++i)
        helpers.emplace_back([&] { work(image, rowsPerStrip, next, strips); });
    work(image, rowsPerStrip, next, strips);
    for (std::thread &helper : helpers)
        helper.join();
    qsizetype size = frameBytes;
    for (const Bytes &strip : strips)
        size += qsizetype(strip.size());
    QByteArray joined(size, Qt::Uninitialized);
    char *out = joined.data() + frameBytes;
    for (const Bytes &strip : strips)
        out = std::copy(strip.begin(), strip.end(), out);
    return joined;
}

} // namespace tovek::bench
