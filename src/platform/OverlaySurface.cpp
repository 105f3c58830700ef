// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/OverlaySurface.h"

#include <algorithm>
#include <span>

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
    template <typename Rects>
    void addAll(const Rects &rects)
    {
        for (const QRect &rect : rects)
            add(rect);
    }
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

/// A part of a list's items, or of the rectangles of one.
template <typename T>
using Part = std::span<const T>;

/// What lies between the beginning and the end that two sequences have in common.
template <typename T>
std::pair<Part<T>, Part<T>> changedParts(const std::vector<T> &before, const std::vector<T> &after)
{
    const auto [from, fromAfter] =
        std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const auto [last, lastAfter] =
        std::mismatch(before.rbegin(), std::make_reverse_iterator(from), after.rbegin(),
                      std::make_reverse_iterator(fromAfter));
    return {{from, last.base()}, {fromAfter, lastAfter.base()}};
}

using Items = Part<DisplayList::Item>;

bool areAllFills(Items items)
{
    return std::all_of(items.begin(), items.end(), [](const DisplayList::Item &item) {
        return std::holds_alternative<DisplayList::Fills>(item);
    });
}

/// Both parts hold nothing but fills of many rectangles. Those of the same colour are compared
/// rectangle by rectangle as long as they keep their order.
void addChangedFills(Items before, Items after, Damage &damage)
{
    auto next = after.begin();
    for (const DisplayList::Item &item : before) {
        const auto &fills = std::get<DisplayList::Fills>(item);
        const auto same = std::find_if(next, after.end(), [&fills](const DisplayList::Item &other) {
            return std::get<DisplayList::Fills>(other).color == fills.color;
        });
        if (same == after.end()) {
            damage.addAll(*fills.rects);
            continue;
        }
        for (; next != same; ++next)
            damage.addAll(*std::get<DisplayList::Fills>(*next).rects);
        const auto [gone, come] =
            changedParts(*fills.rects, *std::get<DisplayList::Fills>(*next++).rects);
        damage.addAll(gone);
        damage.addAll(come);
    }
    for (; next != after.end(); ++next)
        damage.addAll(*std::get<DisplayList::Fills>(*next).rects);
}

/// Item by item where some only moved, and as a whole where some came or went.
void addChangedItems(Items before, Items after, Damage &damage)
{
    const bool isSameCount = before.size() == after.size();
    for (size_t i = 0; i < before.size(); ++i) {
        if (!isSameCount || !(before[i] == after[i]))
            damage.add(boundsOf(before[i]));
    }
    for (size_t i = 0; i < after.size(); ++i) {
        if (!isSameCount || !(before[i] == after[i]))
            damage.add(boundsOf(after[i]));
    }
}

} // namespace

QRect boundsOf(const DisplayList::Item &item)
{
    if (const auto *fill = std::get_if<DisplayList::Fill>(&item))
        return fill->rect;
    if (const auto *fills = std::get_if<DisplayList::Fills>(&item)) {
        QRect bounds;
        for (const QRect &rect : *fills->rects)
            bounds |= rect;
        return bounds;
    }
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
    // What both lists begin and end with keeps its place in the paint order.
    const auto [gone, come] = changedParts(before.items, after.items);
    Damage items;
    if (areAllFills(gone) && areAllFills(come))
        addChangedFills(gone, come, items);
    else
        addChangedItems(gone, come, items);
    return damage + items.region();
}

} // namespace tovek
