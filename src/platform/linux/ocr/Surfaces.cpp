// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/ocr/Surfaces.h"

#include "platform/linux/ocr/DisjointSets.h"

#include <algorithm>
#include <limits>

namespace tovek {

namespace {

/// Neighbours that differ by no more belong to one flat area: gradients and the noise of scaled
/// pictures stay together, the edge of a letter does not, even where the text is faint.
constexpr int flatTolerance = 3;
/// A flat stretch of this many pixels is wider than any stroke of a letter, so it is background
/// or a rule.
constexpr int longStretch = 48;

int difference(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b))});
}

struct FlatArea
{
    int area = 0;
    int inner = 0; ///< pixels with all four neighbours in the same area
    int longestRow = 0;
    int longestColumn = 0;

    Surface kind() const
    {
        if (std::max(longestRow, longestColumn) < longStretch)
            return Surface::other;
        return inner * 5 < area ? Surface::rule : Surface::background;
    }
};

} // namespace

Surfaces::Surfaces(const QImage &image)
    : m_image(image)
    , m_areaNumbers(std::size_t(image.width()) * image.height())
{
    measure(label());
}

std::uint32_t Surfaces::label()
{
    const int width = m_image.width();
    DisjointSets sets;
    const QRgb *above = nullptr;
    for (int y = 0; y < m_image.height(); ++y) {
        const QRgb *here = reinterpret_cast<const QRgb *>(m_image.constScanLine(y));
        std::uint32_t *labels = m_areaNumbers.data() + std::size_t(y) * width;
        for (int x = 0; x < width; ++x) {
            const bool joinsLeft = x > 0 && difference(here[x], here[x - 1]) <= flatTolerance;
            labels[x] = joinsLeft ? labels[x - 1] : sets.add();
            if (above && difference(here[x], above[x]) <= flatTolerance
                && !(joinsLeft && labels[x - width] == labels[x - width - 1]
                     && difference(here[x - 1], above[x - 1]) <= flatTolerance))
                sets.join(labels[x], labels[x - width]);
        }
        above = here;
    }
    std::vector<std::uint32_t> numbers(sets.size(), std::numeric_limits<std::uint32_t>::max());
    std::uint32_t count = 0;
    for (std::uint32_t &label : m_areaNumbers) {
        std::uint32_t &number = numbers[sets.find(label)];
        if (number == std::numeric_limits<std::uint32_t>::max())
            number = count++;
        label = number;
    }
    return count;
}

void Surfaces::measure(std::uint32_t count)
{
    std::vector<FlatArea> areas(count);
    const int width = m_image.width();
    const int height = m_image.height();
    std::vector<int> columns(std::size_t(width), 0);
    for (int y = 0; y < height; ++y) {
        int row = 0;
        for (int x = 0; x < width; ++x) {
            const std::uint32_t number = areaAt(x, y);
            FlatArea &area = areas[number];
            const bool left = x > 0 && areaAt(x - 1, y) == number;
            const bool up = y > 0 && areaAt(x, y - 1) == number;
            const bool right = x + 1 == width || areaAt(x + 1, y) == number;
            const bool down = y + 1 == height || areaAt(x, y + 1) == number;
            row = left ? row + 1 : 1;
            columns[x] = up ? columns[x] + 1 : 1;
            ++area.area;
            area.inner += (left || x == 0) && (up || y == 0) && right && down;
            area.longestRow = std::max(area.longestRow, row);
            area.longestColumn = std::max(area.longestColumn, columns[x]);
        }
    }
    m_kinds.reserve(areas.size());
    for (const FlatArea &area : areas)
        m_kinds.push_back(area.kind());
}

} // namespace tovek
