// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/ToolbarPlacement.h"

#include <cmath>

namespace tovek {

namespace {

constexpr double margin = 8;
constexpr int mostSteps = 4;

double kept(double position, double size, double bound)
{
    return std::max(std::min(position, bound - size - margin), margin);
}

/// The fewest points that make whole native pixels; 1 where too many would be needed.
int stepFor(double scale)
{
    for (int step = 1; step <= mostSteps; ++step) {
        if (std::abs(step * scale - std::round(step * scale)) < 1e-6)
            return step;
    }
    return 1;
}

double snapped(double position, double most, int step)
{
    const double nearest = std::round(position / step) * step;
    const double within = std::min(nearest, std::floor(most / step) * step);
    return std::max(within, std::ceil(margin / step) * step);
}

} // namespace

ToolbarPlacement placedToolbar(const Rect &selection, Size bounds, Size size)
{
    ToolbarPlacement placement;
    double y = selection.minY() - size.height - margin;
    if (y < margin) {
        y = selection.maxY() + margin;
        placement.isToolbarAtTop = true;
        if (bounds.height - margin < y + size.height) {
            y = selection.minY() + margin;
            placement.isToolbarAtTop = false;
        }
    }
    const double x = selection.midX() - size.width / 2;
    placement.frame = {kept(x, size.width, bounds.width), kept(y, size.height, bounds.height),
                       size.width, size.height};
    return placement;
}

Rect snappedToPixels(const Rect &frame, Size bounds, double scale)
{
    // Native pixels are counted from the top of the view.
    const int step = stepFor(scale);
    const double top =
        snapped(bounds.height - frame.maxY(), bounds.height - frame.height - margin, step);
    const double left = snapped(frame.x, bounds.width - frame.width - margin, step);
    return {left, bounds.height - top - frame.height, frame.width, frame.height};
}

Rect framedBeside(const Rect &button, Size size, Size bounds, double distance, bool prefersAbove)
{
    const double below = button.minY() - distance - size.height;
    const double above = button.maxY() + distance;
    const bool fitsBelow = below >= 0;
    const bool fitsAbove = above + size.height <= bounds.height;
    const bool isAbove = prefersAbove ? fitsAbove || !fitsBelow : fitsAbove && !fitsBelow;
    return {kept(button.midX() - size.width / 2, size.width, bounds.width), isAbove ? above : below,
            size.width, size.height};
}

} // namespace tovek
