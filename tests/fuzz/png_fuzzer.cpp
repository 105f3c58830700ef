// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/PngEncoder.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

/// Two bytes are the size, one the format and the threads, the rest are pixels: another decoder
/// reads back every one of them.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace tovek;
    if (size < 4)
        return 0;
    // Tall pictures have more than one strip.
    QImage image(1 + data[0], 1 + data[1] * 16,
                 data[2] & 1 ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    const size_t pixels = size - 3;
    auto *out = image.bits();
    for (size_t i = 0; i < size_t(image.sizeInBytes()); ++i)
        out[i] = data[3 + i % pixels] ^ uint8_t(data[2] & 2 ? i / pixels : 0);
    PngOptions options;
    options.threads = 1 + (data[2] >> 2) % 3;
    const QByteArray png = encodePng(image, options);
    QImage decoded = QImage::fromData(png, "PNG");
    if (decoded.size() != image.size())
        std::abort();
    decoded = decoded.convertToFormat(image.format());
    for (int y = 0; y < image.height(); ++y) {
        const auto *a = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        const auto *b = reinterpret_cast<const QRgb *>(decoded.constScanLine(y));
        const QRgb mask = image.hasAlphaChannel() ? 0xffffffff : 0x00ffffff;
        for (int x = 0; x < image.width(); ++x) {
            if ((a[x] ^ b[x]) & mask)
                std::abort();
        }
    }
    return 0;
}
