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
    /// What of a rectangle lies outside of another one.
    void addOutside(const QRect &hole, const QRect &rect)
    {
        const QRect shared = rect & hole;
        if (rect.isEmpty() || shared == rect)
            return;
        if (shared.isEmpty())
            return add(rect);
        const QRect beside(rect.left(), shared.top(), rect.width(), shared.height());
        for (const QRect &part :
             {QRect(rect.topLeft(), QPoint(rect.right(), shared.top() - 1)),
              QRect(beside.topLeft(), QPoint(shared.left() - 1, beside.bottom())),
              QRect(QPoint(shared.right() + 1, beside.top()), beside.bottomRight()),
              QRect(QPoint(rect.left(), shared.bottom() + 1), rect.bottomRight())}) {
            if (!part.isEmpty())
                add(part);
        }
    }
    std::vector<QRect> rects() &&
    {
        if (m_rects.size() > mostRectangles)
            return {m_bounds};
        return std::move(m_rects);
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

/// Two items in the same place of the paint order.
void addChange(const DisplayList::Item &before, const DisplayList::Item &after, Damage &damage)
{
    if (before == after)
        return;
    const auto *fill = std::get_if<DisplayList::Fill>(&before);
    const auto *other = std::get_if<DisplayList::Fill>(&after);
    if (fill && other && fill->color == other->color) {
        // A line that grows is the same but at its end.
        damage.addOutside(fill->rect, other->rect);
        damage.addOutside(other->rect, fill->rect);
        return;
    }
    damage.add(boundsOf(before));
    damage.add(boundsOf(after));
}

/// Item by item where some only moved, and as a whole where some came or went.
void addChangedItems(Items before, Items after, Damage &damage)
{
    if (before.size() == after.size()) {
        for (size_t i = 0; i < before.size(); ++i)
            addChange(before[i], after[i], damage);
        return;
    }
    for (const Items &items : {before, after}) {
        for (const DisplayList::Item &item : items)
            damage.add(boundsOf(item));
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
    return boundsOf(std::get<DisplayList::Decal>(item));
}

QRect boundsOf(const DisplayList::Decal &decal)
{
    const QRect bounds(decal.at, decal.image.size());
    return decal.clip.isNull() ? bounds : bounds & decal.clip;
}

std::vector<QRect> damagedRects(const DisplayList &before, const DisplayList &after)
{
    constexpr QRect everywhere(-(1 << 14), -(1 << 14), 1 << 15, 1 << 15);
    Damage damage;
    if (before.veil != after.veil) {
        // The veil lies outside of both holes.
        damage.addOutside(before.clear & after.clear, everywhere);
    } else if (before.clear != after.clear && after.veil > 0) {
        damage.addOutside(before.clear, after.clear);
        damage.addOutside(after.clear, before.clear);
    }
    // What both lists begin and end with keeps its place in the paint order.
    const auto [gone, come] = changedParts(before.items, after.items);
    if (areAllFills(gone) && areAllFills(come))
        addChangedFills(gone, come, damage);
    else
        addChangedItems(gone, come, damage);
    return std::move(damage).rects();
}

QRegion damageBetween(const DisplayList &before, const DisplayList &after)
{
    QRegion damage;
    for (const QRect &rect : damagedRects(before, after))
        damage += rect;
    return damage;
}

} // namespace tovek
