// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Blur.h"

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

/// The sums of the four channels over a box of pixels that wanders along a line.
class Box
{
public:
    explicit Box(int radius) : m_reciprocal(uint32_t(std::lround(one / (2.0 * radius + 1)))) { }

    void add(QRgb pixel)
    {
        for (int channel = 0; channel < 4; ++channel)
            m_sums[channel] += pixel >> (8 * channel) & 0xff;
    }
    void remove(QRgb pixel)
    {
        for (int channel = 0; channel < 4; ++channel)
            m_sums[channel] -= pixel >> (8 * channel) & 0xff;
    }
    QRgb mean() const
    {
        QRgb pixel = 0;
        for (int channel = 0; channel < 4; ++channel)
            pixel |= (m_sums[channel] * m_reciprocal + half) >> shift << (8 * channel);
        return pixel;
    }

private:
    // Multiplied instead of divided, which takes several times as long. The largest product is a
    // mean of 255, which leaves 8 bits for it.
    static constexpr int shift = 24;
    static constexpr double one = 1 << shift;
    static constexpr uint32_t half = 1u << (shift - 1);

    uint32_t m_reciprocal;
    std::array<uint32_t, 4> m_sums{};
};

void blurLine(const QRgb *from, int count, QRgb *to, int stride, int radius)
{
    const auto at = [&](int i) { return from[std::clamp(i, 0, count - 1)]; };
    Box box(radius);
    for (int i = -radius; i <= radius; ++i)
        box.add(at(i));
    for (int i = 0; i < count; ++i) {
        to[qsizetype(i) * stride] = box.mean();
        box.add(at(i + radius + 1));
        box.remove(at(i - radius));
    }
}

/// Blurs each of `height` lines and writes it as a column, so that the second of two calls goes
/// along the columns of the first one's picture and turns it back.
void blurAndTurn(const QRgb *from, int width, int height, QRgb *to, int radius)
{
    for (int y = 0; y < height; ++y)
        blurLine(from + qsizetype(y) * width, width, to + y, height, radius);
}

} // namespace

QImage blurred(const QImage &image, double deviation)
{
    const bool hasAlpha = image.hasAlphaChannel();
    QImage result = image.convertToFormat(hasAlpha ? QImage::Format_ARGB32_Premultiplied
                                                   : QImage::Format_RGB32);
    if (result.isNull() || deviation <= 0)
        return result;
    const int width = result.width();
    const int height = result.height();
    // Lines of 32 bit pixels have no padding.
    auto *pixels = reinterpret_cast<QRgb *>(result.bits());
    std::vector<QRgb> turned(size_t(width) * size_t(height));
    for (const int radius : boxRadii(deviation)) {
        blurAndTurn(pixels, width, height, turned.data(), radius);
        blurAndTurn(turned.data(), height, width, pixels, radius);
    }
    return result;
}

} // namespace tovek
