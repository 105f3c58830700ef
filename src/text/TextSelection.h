// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "text/TextRegion.h"

#include <functional>
#include <optional>
#include <set>
#include <vector>

namespace tovek {

/// The words laid over a selection: which one is under the pointer, which are selected. Knows no
/// widget; the view forwards points (y up, the selection's own coordinates), and redraws when what
/// shows has changed.
struct TextSelection
{
    std::vector<TextRegion> textRegions;
    Rect selectionBounds;
    std::set<int> selectedIndices;
    std::optional<int> hoveredIndex;
    std::function<void(const std::vector<TextRegion> &)> onSelectionChanged;
    bool isDragging = false;
    std::optional<Point> dragStart;
    std::optional<int> selectionStartIndex;
    std::optional<Point> dragEnd; ///< where the drag has come to
    std::vector<int> readingOrderIndices; ///< made when it is first needed

    /// Further words were recognised; those there are keep their indices. A drag under way takes in
    /// the ones that came between its ends.
    void add(const std::vector<TextRegion> &regions);
    /// All words have been recognised. Which of them are selected, and where a drag began, is told
    /// by the places of those that were there before.
    void settle(std::vector<TextRegion> regions);

    /// Where a region's word stands in the view.
    Rect rectOf(int index) const;
    /// The first region that contains the point.
    std::optional<int> regionAt(Point at) const;
    /// The region that contains the point, else the one with the nearest center; nothing without
    /// regions.
    std::optional<int> regionNearest(Point at) const;
    void selectRange(int from, int to);
    /// In reading order.
    std::vector<TextRegion> selectedRegions();

    /// True when what shows has changed, as for those that follow.
    [[nodiscard]] bool mouseDown(Point at);
    [[nodiscard]] bool mouseDragged(Point at);
    void mouseUp();
    /// A press on something else.
    [[nodiscard]] bool selectNone();
    [[nodiscard]] bool mouseMoved(Point at);
    [[nodiscard]] bool mouseExited();

private:
    void computeReadingOrder();
    void reportSelection() const;
};

} // namespace tovek
