// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "feedback/Blur.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace tovek {

namespace {

/// The radii of three box blurs in a row whose variances add up to the Gaussian's.
std::array<int, 3> boxRadii(double deviation)
{
    // A box of width w has the variance (w^2 - 1) / 12. The ideal width lies between two odd
    // numbers; the first boxes take the lower, the rest the upper one.
    const double ideal = std::sqrt(12 * deviation * deviation / 3 + 1);
    int lower = int(std::floor(ideal));
    if (lower % 2 == 0)
        --lower;
    const double count =
        (12 * deviation * deviation - 3.0 * lower * lower - 12.0 * lower - 9) / (-4.0 * lower - 4);
    std::array<int, 3> radii{};
    for (int i = 0; i < 3; ++i)
        radii[i] = (i < int(std::lround(count)) ? lower - 1 : lower + 1) / 2;
    return radii;
}

/// Blurs a line of pixels of which neighbours lie `stride` apart.
void blurLine(const QRgb *from, QRgb *to, int count, int stride, int radius)
{
    std::array<int, 4> sum{};
    const auto add = [&](int index, int sign) {
        const QRgb pixel = from[size_t(std::clamp(index, 0, count - 1)) * stride];
        for (int channel = 0; channel < 4; ++channel)
            sum[channel] += sign * int(pixel >> (8 * channel) & 0xff);
    };
    const int width = 2 * radius + 1;
    for (int i = -radius; i <= radius; ++i)
        add(i, 1);
    for (int i = 0; i < count; ++i) {
        QRgb pixel = 0;
        for (int channel = 0; channel < 4; ++channel)
            pixel |= QRgb((sum[channel] + width / 2) / width) << (8 * channel);
        to[size_t(i) * stride] = pixel;
        add(i + radius + 1, 1);
        add(i - radius, -1);
    }
}

} // namespace

QImage blurred(const QImage &image, double deviation)
{
    QImage result = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (result.isNull() || deviation <= 0)
        return result;
    const int width = result.width();
    const int height = result.height();
    const int stride = int(result.bytesPerLine() / 4);
    auto *pixels = reinterpret_cast<QRgb *>(result.bits());
    std::vector<QRgb> other(size_t(stride) * height);
    for (const int radius : boxRadii(deviation)) {
        for (int y = 0; y < height; ++y)
            blurLine(pixels + size_t(y) * stride, other.data() + size_t(y) * stride, width, 1,
                     radius);
        for (int x = 0; x < width; ++x)
            blurLine(other.data() + x, pixels + x, height, stride, radius);
    }
    return result;
}

} // namespace tovek
