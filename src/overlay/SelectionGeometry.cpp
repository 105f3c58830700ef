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

Point edgeAt(Point pointer, const ViewSpace &screen)
{
    const double pixel = 1 / screen.scale + 1e-6;
    Point edge = pointer;
    if (pointer.x >= screen.size.width - pixel && pointer.x < screen.size.width)
        edge.x = screen.size.width;
    if (pointer.y <= pixel && pointer.y > 0)
        edge.y = 0;
    return edge;
}

Rect pushedToEdges(const Rect &selection, ResizeHandle handle, Point edge, Size screen)
{
    const Pull pull = pullOf(handle);
    double left = selection.minX();
    double right = selection.maxX();
    double bottom = selection.minY();
    double top = selection.maxY();
    if (pull.x < 0 && edge.x <= 0)
        left = std::min(left, 0.0);
    if (pull.x > 0 && edge.x >= screen.width)
        right = std::max(right, screen.width);
    if (pull.y < 0 && edge.y <= 0)
        bottom = std::min(bottom, 0.0);
    if (pull.y > 0 && edge.y >= screen.height)
        top = std::max(top, screen.height);
    return {left, bottom, right - left, top - bottom};
}

Rect partOnScreen(const Rect &selection, Size screen)
{
    const double left = std::clamp(selection.minX(), 0.0, screen.width);
    const double right = std::clamp(selection.maxX(), 0.0, screen.width);
    const double bottom = std::clamp(selection.minY(), 0.0, screen.height);
    const double top = std::clamp(selection.maxY(), 0.0, screen.height);
    // Unchanged to the last digit where all of it is there: from edges, an extent is not exact.
    const bool isWide = left == selection.minX() && right == selection.maxX();
    const bool isHigh = bottom == selection.minY() && top == selection.maxY();
    return {left, bottom, isWide ? selection.width : right - left,
            isHigh ? selection.height : top - bottom};
}

bool isCorner(ResizeHandle handle)
{
    const Pull pull = pullOf(handle);
    return pull.x != 0 && pull.y != 0;
}

} // namespace tovek
