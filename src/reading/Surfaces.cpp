// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/Surfaces.h"

#include "reading/DisjointSets.h"

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

/// A plate in pixels and in shares of its height: large letters with a hole have no such margins.
constexpr int leastPlate = 14;
constexpr int leastMargin = 2;
constexpr double leastMarginShare = 0.12;
constexpr double highestWriting = 0.66;
/// In pixels; lower writing cannot be read.
constexpr int lowestWriting = 5;
/// Of its bounding box: how much a plate takes with what is written on it (a disc takes 0.785),
/// and without.
constexpr double leastFilled = 0.74;
constexpr double leastFlat = 0.4;
/// Writing is strokes with gaps, a letter's hole is full.
constexpr double mostInk = 0.64;
constexpr int leastContrast = 12;

/// In pixels, and of its bounding box.
constexpr int highestWord = 110;
constexpr double leastInkOfWord = 0.2;

struct FlatArea
{
    QRect box;
    QRgb color = 0;
    int area = 0;
    int inner = 0; ///< pixels with all four neighbours in the same area
    int longestRow = 0;
    int longestColumn = 0;
    int firstLongRow = -1; ///< y of the rows with a long stretch
    int lastLongRow = -1;

    /// Called for the pixels on its border.
    void meet(int x, int y, const QImage &image)
    {
        box |= QRect(x, y, 1, 1);
        color = reinterpret_cast<const QRgb *>(image.constScanLine(y))[x];
    }
    /// The line that joins the letters of a word in Hindi: one long stroke with much hanging from
    /// it. A frame has another one on its far side, and little ink for its size.
    bool isHeadline() const
    {
        return longestColumn < longStretch && box.height() <= highestWord
            && (lastLongRow - firstLongRow + 1) * 3 <= box.height()
            && area >= box.width() * box.height() * leastInkOfWord;
    }
    Surface kind() const
    {
        if (std::max(longestRow, longestColumn) < longStretch)
            return Surface::other;
        if (isHeadline())
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
            const bool isInner = (left || x == 0) && (up || y == 0) && right && down;
            area.inner += isInner;
            if (!isInner || x == 0 || y == 0 || x + 1 == width || y + 1 == height)
                area.meet(x, y, m_image);
            area.longestRow = std::max(area.longestRow, row);
            if (row >= longStretch) {
                area.firstLongRow = area.firstLongRow < 0 ? y : area.firstLongRow;
                area.lastLongRow = y;
            }
            area.longestColumn = std::max(area.longestColumn, columns[x]);
        }
    }
    m_kinds.reserve(areas.size());
    for (std::uint32_t number = 0; number < count; ++number) {
        const FlatArea &area = areas[number];
        const bool mayBePlate = area.kind() == Surface::other
            && std::min(area.box.width(), area.box.height()) >= leastPlate
            && area.area >= area.box.width() * area.box.height() * leastFlat;
        m_kinds.push_back(mayBePlate && isPlate(number, area.color, area.box) ? Surface::background
                                                                              : area.kind());
        if (m_kinds.back() == Surface::background)
            m_backgrounds.push_back({number, area.box});
    }
}

bool Surfaces::isPlate(std::uint32_t number, QRgb color, const QRect &box) const
{
    // What surrounds the area within its box; the rest of the box is the area and its holes.
    const int width = box.width() + 2;
    const int height = box.height() + 2;
    std::vector<bool> isOutside(std::size_t(width) * height, false);
    std::vector<QPoint> open{{0, 0}};
    isOutside[0] = true;
    int outside = 0;
    while (!open.empty()) {
        const QPoint at = open.back();
        open.pop_back();
        outside += box.contains(at + box.topLeft() - QPoint(1, 1));
        for (const QPoint &step : {QPoint(-1, 0), QPoint(1, 0), QPoint(0, -1), QPoint(0, 1)}) {
            const QPoint next = at + step;
            if (next.x() < 0 || next.y() < 0 || next.x() >= width || next.y() >= height)
                continue;
            const std::size_t index = std::size_t(next.y()) * width + next.x();
            const QPoint pixel = next + box.topLeft() - QPoint(1, 1);
            if (isOutside[index] || (box.contains(pixel) && areaAt(pixel.x(), pixel.y()) == number))
                continue;
            isOutside[index] = true;
            open.push_back(next);
        }
    }
    if (box.width() * box.height() - outside < box.width() * box.height() * leastFilled)
        return false;
    QRect writing;
    int strongest = 0;
    int ink = 0;
    for (int y = 0; y < box.height(); ++y) {
        for (int x = 0; x < box.width(); ++x) {
            if (isOutside[std::size_t(y + 1) * width + x + 1])
                continue;
            const int contrast = difference(m_image.pixel(box.topLeft() + QPoint(x, y)), color);
            if (contrast < leastContrast)
                continue;
            writing |= QRect(x, y, 1, 1);
            strongest = std::max(strongest, contrast);
            ink += contrast;
        }
    }
    if (ink > writing.width() * writing.height() * strongest * mostInk)
        return false;
    const double margin = std::max<double>(leastMargin, box.height() * leastMarginShare);
    return writing.height() >= lowestWriting && writing.height() <= box.height() * highestWriting
        && writing.top() >= margin && box.height() - 1 - writing.bottom() >= margin
        && writing.left() >= leastMargin && box.width() - 1 - writing.right() >= leastMargin;
}

} // namespace tovek
