// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/OverlaySurface.h"

#include <algorithm>

namespace tovek {

namespace {

/// A region of more rectangles than this costs more than painting everything between them: each
/// one is cut against all others, here and in the display server, for each item again.
constexpr size_t mostRectangles = 64;

/// What changed items cover. Joining regions costs too, and most of what moves lies inside
/// something else that moves with it, as the digits in their label.
class Damage
{
public:
    void add(const QRect &rect)
    {
        m_bounds |= rect;
        if (m_rects.size() > mostRectangles
            || std::any_of(m_rects.begin(), m_rects.end(),
                           [&rect](const QRect &known) { return known.contains(rect); }))
            return;
        std::erase_if(m_rects, [&rect](const QRect &known) { return rect.contains(known); });
        m_rects.push_back(rect);
    }
    QRegion region() const
    {
        if (m_rects.size() > mostRectangles)
            return m_bounds;
        QRegion region;
        for (const QRect &rect : m_rects)
            region += rect;
        return region;
    }

private:
    std::vector<QRect> m_rects; ///< none lies inside another
    QRect m_bounds;
};

} // namespace

QRect boundsOf(const DisplayList::Item &item)
{
    if (const auto *fill = std::get_if<DisplayList::Fill>(&item))
        return fill->rect;
    const auto &decal = std::get<DisplayList::Decal>(item);
    const QRect bounds(decal.at, decal.image.size());
    return decal.clip.isNull() ? bounds : bounds & decal.clip;
}

QRegion damageBetween(const DisplayList &before, const DisplayList &after)
{
    QRegion damage;
    if (before.veil != after.veil) {
        // The veil lies outside of both holes.
        damage =
            QRegion(-(1 << 14), -(1 << 14), 1 << 15, 1 << 15) - QRegion(before.clear & after.clear);
    } else if (before.clear != after.clear && after.veil > 0) {
        damage = QRegion(before.clear).xored(QRegion(after.clear));
    }
    // What both lists begin and end with keeps its place in the paint order; the rest between has
    // changed, item by item where it only moved and as a whole where items came or went.
    const auto [firstBefore, firstAfter] = std::mismatch(before.items.begin(), before.items.end(),
                                                         after.items.begin(), after.items.end());
    const auto [lastBefore, lastAfter] =
        std::mismatch(before.items.rbegin(), std::make_reverse_iterator(firstBefore),
                      after.items.rbegin(), std::make_reverse_iterator(firstAfter));
    const bool isSameCount = before.items.size() == after.items.size();
    Damage items;
    auto same = firstAfter;
    for (auto item = firstBefore; item != lastBefore.base(); ++item) {
        if (!isSameCount || !(*item == *same++))
            items.add(boundsOf(*item));
    }
    same = firstBefore;
    for (auto item = firstAfter; item != lastAfter.base(); ++item) {
        if (!isSameCount || !(*item == *same++))
            items.add(boundsOf(*item));
    }
    return damage + items.region();
}

} // namespace tovek
