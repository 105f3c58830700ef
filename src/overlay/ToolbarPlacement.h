// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Geometry.h"

namespace tovek {

/// Where the toolbar goes, in the view's points with y up.
struct ToolbarPlacement
{
    Rect frame;
    bool isToolbarAtTop = false; ///< above the selection, so that the size label makes way

    bool operator==(const ToolbarPlacement &) const = default;
};

/// Centred below the selection, else above it, else inside it near its bottom edge; always kept 8
/// points from every edge of the view.
ToolbarPlacement placedToolbar(const Rect &selection, Size bounds, Size size);

/// The frame at whole points, and at points that are whole native pixels as well where a step of
/// up to 4 points reaches them, so that nothing in it is smeared; still 8 points from every edge.
Rect snappedToPixels(const Rect &frame, Size bounds, double scale);

/// Where something that belongs to a button of the toolbar goes: centred on the button, `distance`
/// points below its lower edge, or above its upper edge where it prefers that or where there is no
/// room; kept 8 points from the sides of the view.
Rect framedBeside(const Rect &button, Size size, Size bounds, double distance, bool prefersAbove);

} // namespace tovek
