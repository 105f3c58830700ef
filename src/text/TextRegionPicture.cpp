// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "text/TextRegionPicture.h"

#include "foundation/SystemColors.h"

#include <QVarLengthArray>

#include <cmath>
#include <map>

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

/// Rectangles by their colour. There are few: a handful for each look of a word, since words do
/// not all lie on whole pixels.
class FillsByColor
{
public:
    void fill(const QRectF &rect, double alpha)
    {
        const QColor &blue = SystemColors::blue;
        const Stretches columns = stretches(rect.left(), rect.right());
        for (const Stretch &row : stretches(rect.top(), rect.bottom())) {
            for (const Stretch &column : columns) {
                const int a = qRound(255 * alpha * row.coverage * column.coverage);
                m_rects[qPremultiply(qRgba(blue.red(), blue.green(), blue.blue(), a))].emplace_back(
                    column.from, row.from, column.length, row.length);
            }
        }
    }
    void stroke(const QRectF &rect, double width, double alpha)
    {
        const double half = width / 2;
        const QRectF outer = rect.adjusted(-half, -half, half, half);
        const QRectF inner = rect.adjusted(half, half, -half, -half);
        if (inner.width() <= 0 || inner.height() <= 0) {
            fill(outer, alpha);
            return;
        }
        fill({outer.left(), outer.top(), outer.width(), width}, alpha);
        fill({outer.left(), inner.bottom(), outer.width(), width}, alpha);
        fill({outer.left(), inner.top(), width, inner.height()}, alpha);
        fill({inner.right(), inner.top(), width, inner.height()}, alpha);
    }
    std::vector<DisplayList::Item> take()
    {
        std::vector<DisplayList::Item> items;
        for (auto &[color, rects] : m_rects)
            items.emplace_back(DisplayList::Fills{
                color, std::make_shared<const std::vector<QRect>>(std::move(rects))});
        m_rects.clear();
        return items;
    }

private:
    std::map<QRgb, std::vector<QRect>> m_rects;
};

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
    // Where boxes overlap, it does not matter which is first: all are of the same blue.
    FillsByColor fills;
    for (int i = 0; i < int(selection.textRegions.size()); ++i) {
        const TextRegionLook look = lookOf(selection, i, highlightText);
        if (!look.isVisible())
            continue;
        Rect rect = selection.rectOf(i);
        rect.x += origin.x;
        rect.y += origin.y;
        const QRectF pixels = space.pixelsFromRect(rect);
        fills.fill(pixels, look.fillAlpha);
        fills.stroke(pixels, look.strokeWidth * space.scale, look.strokeAlpha);
    }
    return fills.take();
}

} // namespace tovek
