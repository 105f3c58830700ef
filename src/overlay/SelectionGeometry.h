// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Geometry.h"

#include <optional>

namespace tovek {

/// The eight places by which a selection is resized. The order is that of the raw values.
enum class ResizeHandle { topLeft, top, topRight, left, right, bottomLeft, bottom, bottomRight };

inline constexpr double minimumSelectionSide = 20;
/// A new selection must be larger than this in both directions, or it counts as a mere click.
inline constexpr double acceptedSelectionSide = 10;

/// The handle whose zone holds the point: 10 by 10 points outside each corner, which win, and
/// bands of 6 points outside each edge, bounds included. Nothing inside a selection is a handle.
std::optional<ResizeHandle> handleAt(Point point, const Rect &selection);

/// The selection after dragging a handle by (dx, dy). It stays at least 20 by 20 points with the
/// edge opposite to the dragged one fixed, and never turns inside out.
Rect resized(const Rect &start, ResizeHandle handle, double dx, double dy);

/// The pointer's place as the edge of a selection: on the last column or row of the screen's
/// pixels, beyond which no pointer gets, the screen's own edge. `screen` is the view's, which fills
/// it.
Point edgeAt(Point pointer, const ViewSpace &screen);

/// A resized selection whose dragged edges the pointer has pushed to those of the screen: they lie
/// there even where the handle was taken a few points beside its edge.
Rect pushedToEdges(const Rect &selection, ResizeHandle handle, Point edge, Size screen);

/// The part of a selection on its screen; without extent, at the nearest edge, where there is none.
Rect partOnScreen(const Rect &selection, Size screen);

bool isCorner(ResizeHandle handle);

} // namespace tovek
