// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/SelectionGeometry.h"

namespace tovek {

/// The pointer's effect on a selection: idle, dragging, finalised, resizing. Knows no widget; the
/// view forwards points, in view coordinates with y up, and repaints. A drag may lead beyond the
/// screen; what is shown and accepted of it is the part on the screen.
class SelectionState
{
public:
    enum class Press {
        startedSelection,
        startedResize,
        insideSelection, ///< nothing happened: the tools decide
        outsideSelection, ///< nothing happened
    };
    enum class Release {
        nothing,
        finalised, ///< a new or resized selection was accepted
        discarded, ///< the attempt was too small
    };

    Press press(Point pointer);
    /// True when the selection changed.
    bool moveTo(Point pointer);
    Release release();
    /// True when the handle under the pointer changed; only a finalised selection has handles, and
    /// none is under a pointer that is elsewhere.
    bool hover(std::optional<Point> pointer);
    /// What a press there would grab.
    std::optional<ResizeHandle> handleUnder(Point pointer) const;
    bool isResizing() const { return activeHandle && resizeStartRect && selectionStart; }

    /// What there is of the selection for everybody else: labelled, copied, saved and read.
    std::optional<Rect> selectionOnScreen() const;

    std::optional<ViewSpace> screen; ///< of the view; without one, nothing ends at its edges
    std::optional<Point> selectionStart; ///< anchor of the drag in progress
    std::optional<Rect> selectionRect;
    bool isSelectionFinalized = false;
    std::optional<ResizeHandle> activeHandle; ///< being dragged
    std::optional<Rect> resizeStartRect;
    std::optional<ResizeHandle> hoveredHandle;

private:
    Point edgeOf(Point pointer) const;
};

} // namespace tovek
