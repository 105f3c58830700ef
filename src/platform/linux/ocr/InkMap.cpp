// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/ocr/InkMap.h"

#include "platform/linux/ocr/DisjointSets.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <limits>

namespace tovek {

namespace {

/// Neighbours that differ by no more belong to one flat area: gradients and the noise of scaled
/// pictures stay together, the edge of a letter does not, even where the text is faint.
constexpr int flatTolerance = 3;
/// A flat stretch of this many pixels is wider than any stroke of a letter, so it is background
/// or a rule.
constexpr int longStretch = 48;
/// How far away the background of a pixel is looked for.
constexpr int backgroundReach = 96;

enum class Surface : std::uint8_t { other, background, rule };

int difference(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b))});
}

/// The mean over the channels, so that the colour fringes of subpixel text add up to the stroke.
int contrastBetween(QRgb a, QRgb b)
{
    return (std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b))
            + std::abs(qBlue(a) - qBlue(b)))
        / 3;
}

struct FlatArea
{
    int area = 0;
    int inner = 0; ///< pixels with all four neighbours in the same area
    int longestRow = 0;
    int longestColumn = 0;
};

/// Divides the image into flat areas and tells backgrounds and rules from the rest.
class Surfaces
{
public:
    explicit Surfaces(const QImage &image)
        : m_image(image)
        , m_labels(std::size_t(image.width()) * image.height())
    {
        label();
        measure();
    }
    Surface at(int x, int y) const { return m_kinds[labelAt(x, y)]; }

private:
    const QRgb *line(int y) const
    {
        return reinterpret_cast<const QRgb *>(m_image.constScanLine(y));
    }
    std::uint32_t labelAt(int x, int y) const
    {
        return m_labels[std::size_t(y) * m_image.width() + x];
    }

    void label()
    {
        const int width = m_image.width();
        DisjointSets sets;
        for (int y = 0; y < m_image.height(); ++y) {
            const QRgb *here = line(y);
            const QRgb *above = y > 0 ? line(y - 1) : nullptr;
            std::uint32_t *labels = m_labels.data() + std::size_t(y) * width;
            for (int x = 0; x < width; ++x) {
                const bool joinsLeft = x > 0 && difference(here[x], here[x - 1]) <= flatTolerance;
                labels[x] = joinsLeft ? labels[x - 1] : sets.add();
                if (above && difference(here[x], above[x]) <= flatTolerance
                    && !(joinsLeft && labels[x - width] == labels[x - width - 1]
                         && difference(here[x - 1], above[x - 1]) <= flatTolerance))
                    sets.join(labels[x], labels[x - width]);
            }
        }
        std::vector<std::uint32_t> numbers(sets.size(), std::numeric_limits<std::uint32_t>::max());
        std::uint32_t count = 0;
        for (std::uint32_t &label : m_labels) {
            std::uint32_t &number = numbers[sets.find(label)];
            if (number == std::numeric_limits<std::uint32_t>::max())
                number = count++;
            label = number;
        }
        m_areas.resize(count);
    }

    void measure()
    {
        const int width = m_image.width();
        const int height = m_image.height();
        std::vector<int> columns(std::size_t(width), 0);
        for (int y = 0; y < height; ++y) {
            int row = 0;
            for (int x = 0; x < width; ++x) {
                const std::uint32_t label = labelAt(x, y);
                FlatArea &area = m_areas[label];
                const bool left = x > 0 && labelAt(x - 1, y) == label;
                const bool up = y > 0 && labelAt(x, y - 1) == label;
                const bool right = x + 1 == width || labelAt(x + 1, y) == label;
                const bool down = y + 1 == height || labelAt(x, y + 1) == label;
                row = left ? row + 1 : 1;
                columns[x] = up ? columns[x] + 1 : 1;
                ++area.area;
                area.inner += (left || x == 0) && (up || y == 0) && right && down;
                area.longestRow = std::max(area.longestRow, row);
                area.longestColumn = std::max(area.longestColumn, columns[x]);
            }
        }
        m_kinds.reserve(m_areas.size());
        for (const FlatArea &area : m_areas)
            m_kinds.push_back(kindOf(area));
    }

    static Surface kindOf(const FlatArea &area)
    {
        if (std::max(area.longestRow, area.longestColumn) < longStretch)
            return Surface::other;
        return area.inner * 5 < area.area ? Surface::rule : Surface::background;
    }

    const QImage &m_image;
    std::vector<std::uint32_t> m_labels;
    std::vector<FlatArea> m_areas;
    std::vector<Surface> m_kinds;
};

/// A background colour seen while walking in one direction.
struct Seen
{
    QRgb color = 0;
    int distance = std::numeric_limits<int>::max() / 2;

    void pass(bool isBackground, QRgb pixel)
    {
        if (isBackground) {
            color = pixel;
            distance = 0;
        } else {
            ++distance;
        }
    }
    bool isNear() const { return distance <= backgroundReach; }
};

/// The contrast to the nearer of two backgrounds, and to the more similar one where both are near:
/// then the pixel is the soft edge between them.
std::optional<int> contrastTo(QRgb pixel, const Seen &a, const Seen &b)
{
    if (!a.isNear() && !b.isNear())
        return std::nullopt;
    if (!b.isNear())
        return contrastBetween(pixel, a.color);
    if (!a.isNear())
        return contrastBetween(pixel, b.color);
    return std::min(contrastBetween(pixel, a.color), contrastBetween(pixel, b.color));
}

} // namespace

InkMap inkMapOf(const QImage &given)
{
    InkMap map;
    if (given.isNull())
        return map;
    const QImage image = given.convertToFormat(QImage::Format_RGB32);
    const int width = image.width();
    const int height = image.height();
    map.size = image.size();
    map.contrast.assign(std::size_t(width) * height, 0);
    const Surfaces surfaces(image);

    std::vector<Seen> rightward(std::size_t(width), Seen{});
    for (int y = 0; y < height; ++y) {
        const QRgb *pixels = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        std::uint8_t *contrast = map.contrast.data() + std::size_t(y) * width;
        Seen seen;
        for (int x = width - 1; x >= 0; --x) {
            seen.pass(surfaces.at(x, y) == Surface::background, pixels[x]);
            rightward[x] = seen;
        }
        seen = {};
        for (int x = 0; x < width; ++x) {
            const Surface surface = surfaces.at(x, y);
            seen.pass(surface == Surface::background, pixels[x]);
            if (surface == Surface::other)
                contrast[x] = std::uint8_t(contrastTo(pixels[x], seen, rightward[x]).value_or(0));
        }
    }
    return map;
}

std::vector<InkPatch> inkPatches(const InkMap &map, int threshold)
{
    const int width = map.size.width();
    constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();
    std::vector<std::uint32_t> above(std::size_t(width) + 2, none);
    std::vector<std::uint32_t> here(std::size_t(width) + 2, none);
    DisjointSets sets;
    std::vector<InkPatch> patches;
    for (int y = 0; y < map.size.height(); ++y) {
        const std::uint8_t *row = map.row(y);
        here.assign(here.size(), none);
        for (int x = 0; x < width; ++x) {
            if (row[x] < threshold)
                continue;
            std::uint32_t label = none;
            for (std::uint32_t other : {here[x], above[x], above[x + 1], above[x + 2]}) {
                if (other == none)
                    continue;
                if (label != none && label != other)
                    sets.join(label, other);
                label = other;
            }
            if (label == none) {
                label = sets.add();
                patches.push_back({QRect(x, y, 1, 1), 0, 0});
            }
            here[x + 1] = label;
            InkPatch &patch = patches[label];
            patch.box |= QRect(x, y, 1, 1);
            ++patch.area;
            patch.peak = std::max(patch.peak, int(row[x]));
        }
        std::swap(above, here);
    }
    std::vector<InkPatch> joined;
    for (std::uint32_t i = 0; i < patches.size(); ++i) {
        const std::uint32_t root = sets.find(i);
        if (root == i)
            continue;
        patches[root].box |= patches[i].box;
        patches[root].area += patches[i].area;
        patches[root].peak = std::max(patches[root].peak, patches[i].peak);
    }
    for (std::uint32_t i = 0; i < patches.size(); ++i) {
        if (sets.find(i) == i)
            joined.push_back(patches[i]);
    }
    return joined;
}

} // namespace tovek
