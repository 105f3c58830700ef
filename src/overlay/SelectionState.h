// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/SelectionGeometry.h"

namespace tovek {

/// The pointer's effect on a selection: idle, dragging, finalised, resizing. Knows no widget; the
/// view forwards points, in view coordinates with y up, and repaints.
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

    Press press(Point at);
    /// True when the selection changed.
    bool moveTo(Point at);
    Release release();
    /// True when the handle under the pointer changed; only a finalised selection has handles.
    bool hover(Point at);
    bool isResizing() const { return activeHandle && resizeStartRect && selectionStart; }

    std::optional<Point> selectionStart; ///< anchor of the drag in progress
    std::optional<Rect> selectionRect;
    bool isSelectionFinalized = false;
    std::optional<ResizeHandle> activeHandle; ///< being dragged
    std::optional<Rect> resizeStartRect;
    std::optional<ResizeHandle> hoveredHandle;
};

} // namespace tovek
