// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "text/TextRegionPicture.h"

#include "foundation/SystemColors.h"

#include <QVarLengthArray>

#include <cmath>

namespace tovek {

namespace {

/// Pixels in a row that a span covers to the same degree.
struct Stretch
{
    int from = 0;
    int length = 0;
    double coverage = 0;
};

/// There may be thousands of words in one picture: nothing is allocated for a single edge.
using Stretches = QVarLengthArray<Stretch, 4>;

Stretches stretches(double low, double high)
{
    // Positions that miss a pixel by a rounding error hit it.
    constexpr double precision = 1e-4;
    Stretches result;
    for (int x = int(std::floor(low + precision)); x < high - precision;) {
        const int whole = int(std::floor(high + precision)) - x;
        const bool isPartial = x < low - precision || whole < 1;
        const int length = isPartial ? 1 : whole;
        double coverage = std::min(high, double(x + length)) - std::max(low, double(x));
        coverage = isPartial ? coverage : 1.0;
        if (!result.isEmpty() && std::abs(result.back().coverage - coverage) < precision)
            result.back().length += length;
        else
            result.push_back({x, length, coverage});
        x += length;
    }
    return result;
}

void fill(const QRectF &rect, double alpha, std::vector<DisplayList::Item> &items)
{
    const QColor &blue = SystemColors::blue;
    const Stretches columns = stretches(rect.left(), rect.right());
    for (const Stretch &row : stretches(rect.top(), rect.bottom())) {
        for (const Stretch &column : columns) {
            const int a = qRound(255 * alpha * row.coverage * column.coverage);
            items.push_back(
                DisplayList::Fill{QRect(column.from, row.from, column.length, row.length),
                                  qPremultiply(qRgba(blue.red(), blue.green(), blue.blue(), a))});
        }
    }
}

void stroke(const QRectF &rect, double width, double alpha, std::vector<DisplayList::Item> &items)
{
    const double half = width / 2;
    const QRectF outer = rect.adjusted(-half, -half, half, half);
    const QRectF inner = rect.adjusted(half, half, -half, -half);
    if (inner.width() <= 0 || inner.height() <= 0) {
        fill(outer, alpha, items);
        return;
    }
    fill({outer.left(), outer.top(), outer.width(), width}, alpha, items);
    fill({outer.left(), inner.bottom(), outer.width(), width}, alpha, items);
    fill({outer.left(), inner.top(), width, inner.height()}, alpha, items);
    fill({inner.right(), inner.top(), width, inner.height()}, alpha, items);
}

} // namespace

TextRegionLook lookOf(const TextSelection &selection, int index, bool highlightText)
{
    if (selection.selectedIndices.contains(index))
        return {0.3, 1.0, 2.0};
    if (selection.hoveredIndex == index)
        return {0.15, 0.5, 1.0};
    if (highlightText)
        return {0.1, 0.5, 1.0};
    return {};
}

std::vector<DisplayList::Item> textRegionItems(const TextSelection &selection, bool highlightText,
                                               const ViewSpace &space, Point origin)
{
    // A word on whole pixels takes nine: its inside, and an edge with soft corners around it.
    constexpr std::size_t usualItems = 9;
    std::vector<DisplayList::Item> items;
    if (highlightText)
        items.reserve(usualItems * selection.textRegions.size());
    for (int i = 0; i < int(selection.textRegions.size()); ++i) {
        const TextRegionLook look = lookOf(selection, i, highlightText);
        if (!look.isVisible())
            continue;
        Rect rect = selection.rectOf(i);
        rect.x += origin.x;
        rect.y += origin.y;
        const QRectF pixels = space.pixelsFromRect(rect);
        fill(pixels, look.fillAlpha, items);
        stroke(pixels, look.strokeWidth * space.scale, look.strokeAlpha, items);
    }
    return items;
}

} // namespace tovek
