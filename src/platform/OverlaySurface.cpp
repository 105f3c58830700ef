// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/OverlaySurface.h"

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
    // Items are matched by position in the list: a list keeps its order while it changes.
    const size_t count = std::max(before.items.size(), after.items.size());
    for (size_t i = 0; i < count; ++i) {
        const bool isInBefore = i < before.items.size();
        const bool isInAfter = i < after.items.size();
        if (isInBefore && isInAfter && before.items[i] == after.items[i])
            continue;
        if (isInBefore)
            damage += boundsOf(before.items[i]);
        if (isInAfter)
            damage += boundsOf(after.items[i]);
    }
    return damage;
}

} // namespace tovek
