// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/OverlaySurface.h"

#include <algorithm>

namespace tovek {

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
    auto same = firstAfter;
    for (auto item = firstBefore; item != lastBefore.base(); ++item) {
        if (!isSameCount || !(*item == *same++))
            damage += boundsOf(*item);
    }
    same = firstBefore;
    for (auto item = firstAfter; item != lastAfter.base(); ++item) {
        if (!isSameCount || !(*item == *same++))
            damage += boundsOf(*item);
    }
    return damage;
}

} // namespace tovek
