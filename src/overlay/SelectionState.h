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

    /// `screen`: of the view; without one, nothing ends at its edges.
    explicit SelectionState(std::optional<ViewSpace> screen = {}) : m_screen(screen) { }

    Press press(Point pointer);
    /// True when the selection changed.
    bool moveTo(Point pointer);
    Release release();
    /// The selection of an earlier capture, as if it had just been made.
    void accept(const Rect &selection);
    /// True when the handle under the pointer changed; only a finalised selection has handles, and
    /// none is under a pointer that is elsewhere.
    bool hover(std::optional<Point> pointer);
    /// What a press there would grab.
    std::optional<ResizeHandle> handleUnder(Point pointer) const;
    bool isResizing() const { return m_resize.has_value(); }

    /// What there is of the selection for everybody else: labelled, copied, saved and read.
    std::optional<Rect> selectionOnScreen() const;

    const std::optional<Point> &selectionStart() const { return m_selectionStart; }
    const std::optional<Rect> &selectionRect() const { return m_selectionRect; }
    bool isSelectionFinalized() const { return m_isSelectionFinalized; }
    std::optional<ResizeHandle> hoveredHandle() const { return m_hoveredHandle; }

private:
    struct Resize
    {
        ResizeHandle handle;
        Rect startRect;
    };

    Point edgeOf(Point pointer) const;

    std::optional<ViewSpace> m_screen;
    std::optional<Point> m_selectionStart; ///< anchor of the drag in progress
    std::optional<Rect> m_selectionRect; ///< there when it is finalised
    bool m_isSelectionFinalized = false;
    std::optional<Resize> m_resize; ///< under way, of a finalised selection
    std::optional<ResizeHandle> m_hoveredHandle;
};

} // namespace tovek
