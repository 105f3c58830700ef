// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/Blur.h"

#include <algorithm>
#include <vector>

namespace tovek {

namespace {

/// One line of pixels, `stride` apart, of which each becomes the mean of its neighbourhood.
void blurLine(QRgb *line, int count, qsizetype stride, int radius, std::vector<QRgb> &copy)
{
    for (int i = 0; i < count; ++i)
        copy[size_t(i)] = line[i * stride];
    const auto at = [&](int i) { return copy[size_t(std::clamp(i, 0, count - 1))]; };
    int red = 0;
    int green = 0;
    int blue = 0;
    for (int i = -radius; i <= radius; ++i) {
        red += qRed(at(i));
        green += qGreen(at(i));
        blue += qBlue(at(i));
    }
    const int size = 2 * radius + 1;
    for (int i = 0; i < count; ++i) {
        line[i * stride] =
            qRgb((red + radius) / size, (green + radius) / size, (blue + radius) / size);
        const QRgb in = at(i + radius + 1);
        const QRgb out = at(i - radius);
        red += qRed(in) - qRed(out);
        green += qGreen(in) - qGreen(out);
        blue += qBlue(in) - qBlue(out);
    }
}

} // namespace

QImage blurred(const QImage &image, int radius)
{
    QImage result = image.convertToFormat(QImage::Format_RGB32);
    if (radius <= 0 || result.isNull())
        return result;
    const int width = result.width();
    const int height = result.height();
    const qsizetype stride = result.bytesPerLine() / qsizetype(sizeof(QRgb));
    auto *pixels = reinterpret_cast<QRgb *>(result.bits());
    std::vector<QRgb> copy(size_t(std::max(width, height)));
    for (int pass = 0; pass < 3; ++pass) {
        for (int y = 0; y < height; ++y)
            blurLine(pixels + y * stride, width, 1, radius, copy);
        for (int x = 0; x < width; ++x)
            blurLine(pixels + x, height, stride, radius, copy);
    }
    return result;
}

} // namespace tovek
