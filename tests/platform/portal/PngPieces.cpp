// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PngPieces.h"

#include <cstdlib>
#include <zlib.h>

namespace tovek {

namespace {

QByteArray number(uint32_t value)
{
    QByteArray bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.append(char(value >> shift));
    return bytes;
}

/// As the format describes it, one byte at a time.
int predicted(int filter, int left, int above, int corner)
{
    const int plane = left + above - corner;
    const int toLeft = std::abs(plane - left);
    const int toAbove = std::abs(plane - above);
    const int toCorner = std::abs(plane - corner);
    switch (filter) {
    case 1:
        return left;
    case 2:
        return above;
    case 3:
        return (left + above) / 2;
    case 4:
        if (toLeft <= toAbove && toLeft <= toCorner)
            return left;
        return toAbove <= toCorner ? above : corner;
    default:
        return 0;
    }
}

} // namespace

QByteArray pngSignature()
{
    return QByteArray("\x89PNG\r\n\x1a\n", 8);
}

QByteArray pngChunk(const char *type, const QByteArray &body)
{
    const QByteArray summed = type + body;
    const auto sum =
        crc32(0, reinterpret_cast<const Bytef *>(summed.constData()), uInt(summed.size()));
    return number(uint32_t(body.size())) + summed + number(uint32_t(sum));
}

QByteArray pngHeader(const PngKind &kind)
{
    QByteArray body = number(kind.width) + number(kind.height);
    for (const uint8_t byte :
         {kind.bits, kind.colors, kind.packing, kind.filters, kind.interlacing})
        body.append(char(byte));
    return pngChunk("IHDR", body);
}

QByteArray pngRows(const QImage &image, size_t pixelBytes, int filter)
{
    const QImage bytes = image.convertToFormat(QImage::Format_RGBA8888);
    const auto at = [&](int x, int y, size_t i) {
        return x < 0 || y < 0 ? 0 : bytes.constScanLine(y)[size_t(x) * 4 + i];
    };
    QByteArray rows;
    for (int y = 0; y < image.height(); ++y) {
        const int used = filter < 0 ? y % 5 : filter;
        rows.append(char(used));
        for (int x = 0; x < image.width(); ++x) {
            for (size_t i = 0; i < pixelBytes; ++i)
                rows.append(
                    char(at(x, y, i)
                         - predicted(used, at(x - 1, y, i), at(x, y - 1, i), at(x - 1, y - 1, i))));
        }
    }
    return rows;
}

QByteArray deflated(const QByteArray &bytes)
{
    return qCompress(bytes).mid(4); // without the length
}

QByteArray pngOf(const QImage &image, size_t pixelBytes, int filter, qsizetype chunk)
{
    PngKind kind{uint32_t(image.width()), uint32_t(image.height())};
    kind.colors = pixelBytes == 4 ? 6 : 2;
    QByteArray png = pngSignature() + pngHeader(kind);
    const QByteArray packed = deflated(pngRows(image, pixelBytes, filter));
    for (qsizetype i = 0; i < packed.size(); i += chunk)
        png += pngChunk("IDAT", packed.mid(i, chunk));
    return png + pngChunk("IEND", {});
}

} // namespace tovek
