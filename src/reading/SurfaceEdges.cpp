// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/SurfaceEdges.h"

#include "reading/DisjointSets.h"
#include "reading/Surfaces.h"

#include <algorithm>
#include <array>
#include <limits>

namespace tovek {

namespace {

constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();
/// How far, in one channel, a mixture of two colours may lie outside of them.
constexpr int mixTolerance = 8;
/// The share of a patch's neighbours that the second surface must have.
constexpr double leastEdgeShare = 0.15;
/// A piece of a frame has one surface on one side and another on the other.
constexpr double leastShareOfFrame = 0.3;
/// In pixels. A large letter may have a surface in it too, but has thicker strokes.
constexpr int thickestFrame = 3;
/// No surface fits into a patch smaller than this.
constexpr int leastAround = 48;

using Channels = std::array<int, 3>;

Channels channelsOf(QRgb color)
{
    return {qRed(color), qGreen(color), qBlue(color)};
}

/// Pixels of a patch that lie beside one background area.
struct Contact
{
    std::uint32_t area = none;
    int count = 0;
    QRgb color = 0;
};

/// What lies around a patch, and the colours in it.
struct Surroundings
{
    std::array<Contact, 4> contacts;
    QRect box;
    int pixels = 0;
    int neighbours = 0;
    int rules = 0;
    Channels darkest{255, 255, 255};
    Channels lightest{0, 0, 0};

    void add(QPoint at, QRgb color)
    {
        box |= QRect(at, QSize(1, 1));
        ++pixels;
        const Channels channels = channelsOf(color);
        for (std::size_t i = 0; i < channels.size(); ++i) {
            darkest[i] = std::min(darkest[i], channels[i]);
            lightest[i] = std::max(lightest[i], channels[i]);
        }
    }
    void touch(std::uint32_t area, QRgb color, int count = 1)
    {
        neighbours += count;
        for (Contact &contact : contacts) {
            if (contact.area != none && contact.area != area)
                continue;
            contact = {area, contact.count + count, color};
            return;
        }
    }
    void merge(const Surroundings &other)
    {
        box |= other.box;
        pixels += other.pixels;
        rules += other.rules;
        for (const Contact &contact : other.contacts) {
            if (contact.area != none)
                touch(contact.area, contact.color, contact.count);
        }
        for (std::size_t i = 0; i < darkest.size(); ++i) {
            darkest[i] = std::min(darkest[i], other.darkest[i]);
            lightest[i] = std::max(lightest[i], other.lightest[i]);
        }
    }

    bool isEdge() const
    {
        // A frame's soft side, between it and one surface.
        if (rules > 0 && rules >= neighbours)
            return true;
        std::array<Contact, 4> sorted = contacts;
        std::sort(sorted.begin(), sorted.end(),
                  [](const Contact &a, const Contact &b) { return a.count > b.count; });
        const Contact &first = sorted[0];
        const Contact &second = sorted[1];
        if (second.count < std::max(1.0, neighbours * leastEdgeShare))
            return false;
        const bool isBetween = std::max(box.width(), box.height()) < leastAround
            || pixels * 2 <= neighbours * thickestFrame;
        if (isBetween && second.count >= neighbours * leastShareOfFrame)
            return true;
        return rules > 0 || isMixtureOf(first.color, second.color);
    }

private:
    bool isMixtureOf(QRgb a, QRgb b) const
    {
        const Channels one = channelsOf(a);
        const Channels other = channelsOf(b);
        for (std::size_t i = 0; i < one.size(); ++i) {
            if (darkest[i] < std::min(one[i], other[i]) - mixTolerance
                || lightest[i] > std::max(one[i], other[i]) + mixTolerance)
                return false;
        }
        return true;
    }
};

/// The connected ink, numbered, with its surroundings.
class Patches
{
public:
    Patches(const InkMap &map, const QImage &image, const Surfaces &surfaces)
        : m_map(map)
        , m_image(image)
        , m_surfaces(surfaces)
        , m_labels(map.contrast.size(), none)
    {
        for (int y = 0; y < map.size.height(); ++y) {
            for (int x = 0; x < map.size.width(); ++x) {
                if (map.at(x, y) >= faintestInk)
                    add(x, y);
            }
        }
        for (std::uint32_t i = 0; i < m_around.size(); ++i) {
            if (const std::uint32_t root = m_sets.find(i); root != i)
                m_around[root].merge(m_around[i]);
        }
        for (const Surroundings &around : m_around)
            m_isEdge.push_back(around.isEdge());
    }
    bool isEdge(std::size_t pixel)
    {
        return m_labels[pixel] != none && m_isEdge[m_sets.find(m_labels[pixel])];
    }

private:
    QRgb color(int x, int y) const
    {
        return reinterpret_cast<const QRgb *>(m_image.constScanLine(y))[x];
    }

    void add(int x, int y)
    {
        const int width = m_image.width();
        const std::size_t at = std::size_t(y) * width + x;
        std::uint32_t label = none;
        const auto join = [&](std::uint32_t other) {
            if (other == none)
                return;
            if (label != none && label != other)
                m_sets.join(label, other);
            label = other;
        };
        if (x > 0)
            join(m_labels[at - 1]);
        for (int dx = -1; y > 0 && dx <= 1; ++dx) {
            if (x + dx >= 0 && x + dx < width)
                join(m_labels[at - width + dx]);
        }
        if (label == none) {
            label = m_sets.add();
            m_around.emplace_back();
        }
        m_labels[at] = label;
        Surroundings &around = m_around[label];
        around.add({x, y}, color(x, y));
        for (const auto &[dx, dy] : {std::pair{-1, 0}, {1, 0}, {0, -1}, {0, 1}}) {
            // The faintest step of a soft edge is neither ink nor background.
            if (!look(x + dx, y + dy, around))
                look(x + 2 * dx, y + 2 * dy, around);
        }
    }

    /// False where there is neither a surface nor ink.
    bool look(int x, int y, Surroundings &around) const
    {
        if (x < 0 || y < 0 || x >= m_image.width() || y >= m_image.height())
            return true;
        const Surface surface = m_surfaces.at(x, y);
        if (surface == Surface::background)
            around.touch(m_surfaces.areaAt(x, y), color(x, y));
        else if (surface == Surface::rule)
            ++around.rules;
        else
            return m_map.at(x, y) >= faintestInk;
        return true;
    }

    const InkMap &m_map;
    const QImage &m_image;
    const Surfaces &m_surfaces;
    std::vector<std::uint32_t> m_labels;
    DisjointSets m_sets;
    std::vector<Surroundings> m_around;
    std::vector<bool> m_isEdge;
};

} // namespace

void eraseEdges(InkMap &map, const QImage &image, const Surfaces &surfaces)
{
    Patches patches(map, image, surfaces);
    for (std::size_t i = 0; i < map.contrast.size(); ++i) {
        if (patches.isEdge(i))
            map.contrast[i] = 0;
    }
}

} // namespace tovek
