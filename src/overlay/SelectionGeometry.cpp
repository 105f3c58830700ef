// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/SelectionGeometry.h"

namespace tovek {

namespace {

constexpr double cornerZone = 10;
constexpr double edgeZone = 6;

bool within(double value, double low, double high)
{
    return value >= low && value <= high;
}

struct Pull
{
    int x; ///< -1: the left edge moves, 1: the right edge, 0: neither
    int y; ///< -1: the bottom edge moves, 1: the top edge, 0: neither
};

Pull pullOf(ResizeHandle handle)
{
    switch (handle) {
    case ResizeHandle::topLeft:
        return {-1, 1};
    case ResizeHandle::top:
        return {0, 1};
    case ResizeHandle::topRight:
        return {1, 1};
    case ResizeHandle::left:
        return {-1, 0};
    case ResizeHandle::right:
        return {1, 0};
    case ResizeHandle::bottomLeft:
        return {-1, -1};
    case ResizeHandle::bottom:
        return {0, -1};
    case ResizeHandle::bottomRight:
        return {1, -1};
    }
    Q_UNREACHABLE();
}

/// Moves one edge of the span [origin, origin + length] and keeps the minimum length.
void pullSpan(double &origin, double &length, int edge, double by)
{
    const double end = origin + length;
    if (edge < 0) {
        length -= by;
        origin += by;
    } else if (edge > 0) {
        length += by;
    }
    if (length < minimumSelectionSide) {
        length = minimumSelectionSide;
        if (edge < 0)
            origin = end - minimumSelectionSide;
    }
}

} // namespace

std::optional<ResizeHandle> handleAt(Point p, const Rect &s)
{
    const bool leftOf = within(p.x, s.minX() - cornerZone, s.minX());
    const bool rightOf = within(p.x, s.maxX(), s.maxX() + cornerZone);
    const bool below = within(p.y, s.minY() - cornerZone, s.minY());
    const bool above = within(p.y, s.maxY(), s.maxY() + cornerZone);
    if (leftOf && below)
        return ResizeHandle::bottomLeft;
    if (rightOf && below)
        return ResizeHandle::bottomRight;
    if (leftOf && above)
        return ResizeHandle::topLeft;
    if (rightOf && above)
        return ResizeHandle::topRight;

    const bool alongX = within(p.x, s.minX(), s.maxX());
    const bool alongY = within(p.y, s.minY(), s.maxY());
    if (alongX && within(p.y, s.maxY(), s.maxY() + edgeZone))
        return ResizeHandle::top;
    if (alongX && within(p.y, s.minY() - edgeZone, s.minY()))
        return ResizeHandle::bottom;
    if (alongY && within(p.x, s.minX() - edgeZone, s.minX()))
        return ResizeHandle::left;
    if (alongY && within(p.x, s.maxX(), s.maxX() + edgeZone))
        return ResizeHandle::right;
    return std::nullopt;
}

Rect resized(const Rect &start, ResizeHandle handle, double dx, double dy)
{
    const Pull pull = pullOf(handle);
    Rect result = start;
    pullSpan(result.x, result.width, pull.x, dx);
    pullSpan(result.y, result.height, pull.y, dy);
    return result;
}

bool isCorner(ResizeHandle handle)
{
    const Pull pull = pullOf(handle);
    return pull.x != 0 && pull.y != 0;
}

} // namespace tovek
