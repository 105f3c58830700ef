// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/RowFilter.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

namespace tovek {

namespace {

/// One row in so many is judged.
constexpr size_t sampleStep = 12;

uint8_t averageOf(uint8_t a, uint8_t b)
{
    // Without a carry, so that sixteen fit into a register.
    return uint8_t((a & b) + (uint8_t(a ^ b) >> 1));
}

uint32_t magnitude(uint8_t difference)
{
    return std::min<uint8_t>(difference, uint8_t(-difference));
}

struct Sample
{
    size_t repeats = 0; ///< pixels equal to the one on the left or above
    size_t pixels = 0;
    std::array<size_t, 4> cost{};

    void add(const uint8_t *row, const uint8_t *above, size_t rowBytes, size_t pixelBytes)
    {
        uint32_t sub = 0;
        uint32_t up = 0;
        uint32_t average = 0;
        for (size_t i = pixelBytes; i < rowBytes; ++i) {
            sub += magnitude(uint8_t(row[i] - row[i - pixelBytes]));
            up += magnitude(uint8_t(row[i] - above[i]));
            average += magnitude(uint8_t(row[i] - averageOf(row[i - pixelBytes], above[i])));
        }
        countRepeats(row, above, rowBytes, pixelBytes);
        cost[size_t(RowFilter::sub)] += sub;
        cost[size_t(RowFilter::up)] += up;
        cost[size_t(RowFilter::average)] += average;
    }

    void countRepeats(const uint8_t *row, const uint8_t *above, size_t rowBytes, size_t pixelBytes)
    {
        for (size_t x = pixelBytes; x < rowBytes; x += pixelBytes) {
            bool isLeft = true;
            bool isAbove = true;
            for (size_t i = x; i < x + pixelBytes; ++i) {
                isLeft &= row[i] == row[i - pixelBytes];
                isAbove &= row[i] == above[i];
            }
            repeats += isLeft | isAbove;
            ++pixels;
        }
    }
};

} // namespace

RowFilter chooseFilter(const uint8_t *rows, size_t rowCount, size_t stride, size_t rowBytes,
                       size_t pixelBytes)
{
    if (rowCount < 2 || rowBytes <= pixelBytes)
        return RowFilter::none;
    Sample sample;
    for (size_t y = 1 + (rowCount - 2) % sampleStep / 2; y < rowCount; y += sampleStep)
        sample.add(rows + y * stride, rows + (y - 1) * stride, rowBytes, pixelBytes);
    if (2 * sample.repeats >= sample.pixels)
        return RowFilter::none;
    RowFilter best = RowFilter::average;
    for (const RowFilter filter : {RowFilter::up, RowFilter::sub}) {
        if (sample.cost[size_t(filter)] < sample.cost[size_t(best)])
            best = filter;
    }
    return best;
}

void filterRow(RowFilter filter, const uint8_t *row, const uint8_t *above, size_t rowBytes,
               size_t pixelBytes, uint8_t *__restrict out)
{
    *out++ = uint8_t(filter);
    const size_t first = std::min(pixelBytes, rowBytes);
    switch (filter) {
    case RowFilter::none:
        std::memcpy(out, row, rowBytes);
        return;
    case RowFilter::sub:
        std::memcpy(out, row, first);
        for (size_t i = first; i < rowBytes; ++i)
            out[i] = uint8_t(row[i] - row[i - pixelBytes]);
        return;
    case RowFilter::up:
        for (size_t i = 0; i < rowBytes; ++i)
            out[i] = uint8_t(row[i] - above[i]);
        return;
    case RowFilter::average:
        for (size_t i = 0; i < first; ++i)
            out[i] = uint8_t(row[i] - above[i] / 2);
        for (size_t i = first; i < rowBytes; ++i)
            out[i] = uint8_t(row[i] - averageOf(row[i - pixelBytes], above[i]));
        return;
    }
}

} // namespace tovek
