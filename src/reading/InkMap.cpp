// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/InkMap.h"

#include "reading/DisjointSets.h"
#include "reading/Panels.h"
#include "reading/SurfaceEdges.h"
#include "reading/Surfaces.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <limits>

namespace tovek {

namespace {

/// How far away the background of a pixel is looked for.
constexpr int backgroundReach = 96;

/// The mean over the channels, so that the colour fringes of subpixel text add up to the stroke.
int contrastBetween(QRgb a, QRgb b)
{
    return (std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b))
            + std::abs(qBlue(a) - qBlue(b)))
        / 3;
}

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
    eraseEdges(map, image, surfaces);
    map.panels = panelsOf(surfaces, map.size);
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
