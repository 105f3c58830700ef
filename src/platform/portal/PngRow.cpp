// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PngRow.h"

#include <cstring>

namespace tovek {

namespace {

/// The bytes of one pixel side by side, which compilers put into one register; wide enough for the
/// differences of Paeth's predictor.
using Pixel = int16_t __attribute__((vector_size(8)));

using Bytes = uint8_t __attribute__((vector_size(4)));

Pixel load(const uint8_t *at)
{
    Bytes bytes;
    std::memcpy(&bytes, at, sizeof bytes);
    return __builtin_convertvector(bytes, Pixel);
}

template <size_t pixelBytes>
void store(Pixel pixel, uint8_t *at)
{
    const Bytes bytes = __builtin_convertvector(pixel, Bytes);
    std::memcpy(at, &bytes, pixelBytes);
}

Pixel select(Pixel mask, Pixel there, Pixel elsewhere)
{
    return (mask & there) | (~mask & elsewhere);
}

Pixel magnitude(Pixel value)
{
    return select(value < 0, -value, value);
}

/// Of left, above and above left the one that is nearest to their plane, in this order of ties.
Pixel paeth(Pixel left, Pixel above, Pixel corner)
{
    const Pixel toLeft = magnitude(above - corner);
    const Pixel toAbove = magnitude(left - corner);
    const Pixel toCorner = magnitude(left + above - corner - corner);
    return select((toLeft <= toAbove) & (toLeft <= toCorner), left,
                  select(toAbove <= toCorner, above, corner));
}

/// `predict` tells the pixel from those on the left, above, and above left.
template <size_t pixelBytes, typename Predict>
void unfilter(uint8_t *row, const uint8_t *above, size_t rowBytes, Predict predict)
{
    Pixel left{};
    Pixel corner{};
    constexpr Pixel byte{255, 255, 255, 255};
    for (size_t i = 0; i < rowBytes; i += pixelBytes) {
        const Pixel up = load(above + i);
        left = (load(row + i) + predict(left, up, corner)) & byte;
        corner = up;
        store<pixelBytes>(left, row + i);
    }
}

template <size_t pixelBytes>
bool unfilterPixels(uint8_t filter, uint8_t *row, const uint8_t *above, size_t rowBytes)
{
    switch (filter) {
    case 0:
        return true;
    case 1:
        unfilter<pixelBytes>(row, above, rowBytes, [](Pixel left, Pixel, Pixel) { return left; });
        return true;
    case 2:
        for (size_t i = 0; i < rowBytes; ++i)
            row[i] = uint8_t(row[i] + above[i]);
        return true;
    case 3:
        unfilter<pixelBytes>(row, above, rowBytes,
                             [](Pixel left, Pixel up, Pixel) { return (left + up) >> 1; });
        return true;
    case 4:
        unfilter<pixelBytes>(row, above, rowBytes, &paeth);
        return true;
    default:
        return false;
    }
}

} // namespace

bool unfilterRow(uint8_t filter, uint8_t *row, const uint8_t *above, size_t rowBytes,
                 size_t pixelBytes)
{
    return pixelBytes == 4 ? unfilterPixels<4>(filter, row, above, rowBytes)
                           : unfilterPixels<3>(filter, row, above, rowBytes);
}

void rowToRgb32(const uint8_t *row, size_t pixels, size_t pixelBytes, uint32_t *out)
{
    constexpr uint32_t opaque = 0xff000000;
    if (pixelBytes == 4) {
        for (size_t i = 0; i < pixels; ++i, row += 4)
            out[i] = opaque | uint32_t(row[0]) << 16 | uint32_t(row[1]) << 8 | row[2];
        return;
    }
    for (size_t i = 0; i < pixels; ++i, row += 3)
        out[i] = opaque | uint32_t(row[0]) << 16 | uint32_t(row[1]) << 8 | row[2];
}

} // namespace tovek
