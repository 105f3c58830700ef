// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QPointF>
#include <QRect>
#include <QRegion>
#include <QString>

#include <algorithm>

namespace tovek {

/// A position in points with y growing upwards. Deliberately no QPointF, so that the two
/// directions of y cannot be mixed by accident; only ViewSpace converts.
struct Point
{
    double x = 0;
    double y = 0;

    bool operator==(const Point &) const = default;
};

/// A size in points.
struct Size
{
    double width = 0;
    double height = 0;

    bool operator==(const Size &) const = default;
};

/// A rectangle in points with y growing upwards: (x, y) is its bottom left corner.
struct Rect
{
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double minX() const { return x; }
    double minY() const { return y; }
    double maxX() const { return x + width; }
    double maxY() const { return y + height; }
    double midX() const { return x + width / 2; }
    double midY() const { return y + height / 2; }
    Size size() const { return {width, height}; }

    /// True also on the bottom and left edge, false on the top and right edge.
    bool contains(Point p) const
    {
        return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY();
    }
    Rect insetBy(double dx, double dy) const
    {
        return {x + dx, y + dy, width - 2 * dx, height - 2 * dy};
    }
    /// The smallest rectangle that has both points as corners.
    static Rect spanning(Point a, Point b)
    {
        return {std::min(a.x, b.x), std::min(a.y, b.y), std::abs(a.x - b.x), std::abs(a.y - b.y)};
    }

    bool operator==(const Rect &) const = default;
};

/// Readable form of origin and size, for log lines.
QString toString(const Rect &rect);

/// Every whole pixel that the region touches after scaling.
QRegion scaled(const QRegion &region, double factor);

/// One view's coordinate spaces: points with y up (rules), logical pixels with y down (widgets),
/// and native pixels with y down (images). The only place where y is flipped.
struct ViewSpace
{
    Size size; ///< of the view, in points
    double scale = 1; ///< native pixels per point; need not be whole

    Point pointFromWidget(QPointF p) const { return {p.x(), size.height - p.y()}; }
    QPointF widgetFromPoint(Point p) const { return {p.x, size.height - p.y}; }
    QRectF widgetFromRect(const Rect &r) const
    {
        return {r.x, size.height - r.maxY(), r.width, r.height};
    }
    QRectF pixelsFromRect(const Rect &r) const
    {
        return {r.x * scale, (size.height - r.maxY()) * scale, r.width * scale, r.height * scale};
    }

    bool operator==(const ViewSpace &) const = default;
};

} // namespace tovek
