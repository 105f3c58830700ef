// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/Panels.h"

#include "reading/Surfaces.h"

#include <algorithm>
#include <optional>

namespace tovek {

namespace {

/// In pixels: a panel of less height has one line, and is one only beside other panels.
constexpr int leastHeightOfLines = 48;
constexpr int leastPanelHeight = 14;
constexpr int leastWidth = 40;
/// Round corners and what overlaps take less of a side than is left.
constexpr double straightShare = 0.7;
/// A soft edge or a shadow belongs to the background here and there.
constexpr int edge = 3;
/// How far beside a panel its neighbour begins: a frame and its soft edge lie between.
constexpr int farthestNeighbour = 6;

class PanelFinder
{
public:
    PanelFinder(const Surfaces &surfaces, QSize picture) : m_surfaces(surfaces), m_picture(picture)
    {
    }

    bool isPanel(const Surfaces::Background &background) const
    {
        const QRect &box = background.box;
        if (box.width() < leastWidth || box.height() < leastPanelHeight || box.size() == m_picture
            || !isUpright(background))
            return false;
        return box.height() >= leastHeightOfLines
            || (box.width() > box.height() * 3 && isBetweenOthers(background));
    }

private:
    std::uint32_t areaAt(QPoint at) const { return m_surfaces.areaAt(at.x(), at.y()); }

    /// Four straight sides.
    bool isUpright(const Surfaces::Background &background) const
    {
        const QRect &box = background.box;
        return isStraight(background.area, box.topLeft(), {0, 1}, {1, 0}, box.height())
            && isStraight(background.area, box.topRight(), {0, 1}, {-1, 0}, box.height())
            && isStraight(background.area, box.topLeft(), {1, 0}, {0, 1}, box.width())
            && isStraight(background.area, box.bottomLeft(), {1, 0}, {0, -1}, box.width());
    }
    bool isStraight(std::uint32_t area, QPoint from, QPoint along, QPoint inwards, int length) const
    {
        int count = 0;
        for (int i = 0; i < length; ++i) {
            bool isHere = false;
            for (int depth = 0; depth < edge && !isHere; ++depth)
                isHere = areaAt(from + along * i + inwards * depth) == area;
            count += isHere;
        }
        return count >= length * straightShare;
    }

    /// False for marked text: the same background goes on at both sides.
    bool isBetweenOthers(const Surfaces::Background &background) const
    {
        const QRect &box = background.box;
        const auto left = neighbour({box.left() - 1, box.center().y()}, -1);
        const auto right = neighbour({box.right() + 1, box.center().y()}, 1);
        return !left || !right || *left != *right;
    }
    std::optional<std::uint32_t> neighbour(QPoint at, int step) const
    {
        for (int i = 0; i < farthestNeighbour && at.x() >= 0 && at.x() < m_picture.width(); ++i) {
            if (m_surfaces.at(at.x(), at.y()) == Surface::background)
                return areaAt(at);
            at.rx() += step;
        }
        return std::nullopt;
    }

    const Surfaces &m_surfaces;
    QSize m_picture;
};

} // namespace

std::vector<QRect> panelsOf(const Surfaces &surfaces, QSize picture)
{
    std::vector<QRect> panels;
    const PanelFinder finder(surfaces, picture);
    for (const Surfaces::Background &background : surfaces.backgrounds()) {
        if (finder.isPanel(background))
            panels.push_back(background.box);
    }
    std::stable_sort(panels.begin(), panels.end(), [](const QRect &a, const QRect &b) {
        return a.width() * a.height() < b.width() * b.height();
    });
    return panels;
}

std::vector<std::vector<InkPatch>> byPanel(const std::vector<InkPatch> &patches,
                                           const std::vector<QRect> &panels)
{
    std::vector<std::vector<InkPatch>> groups(panels.size() + 1);
    for (const InkPatch &patch : patches) {
        const auto panel = std::find_if(panels.begin(), panels.end(), [&](const QRect &one) {
            return one.contains(patch.box.center());
        });
        groups[panel == panels.end() ? 0 : std::size_t(panel - panels.begin()) + 1].push_back(
            patch);
    }
    std::erase_if(groups, [](const std::vector<InkPatch> &group) { return group.empty(); });
    return groups;
}

} // namespace tovek
