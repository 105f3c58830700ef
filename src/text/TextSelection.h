// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "text/TextRegion.h"

#include <functional>
#include <optional>
#include <set>
#include <vector>

namespace tovek {

/// What a mouse event led to.
struct TextSelectionResponse
{
    enum class Cursor { arrow, iBeam };

    bool isPassedOn = false; ///< the view behind gets the event too
    bool needsDisplay = false;
    std::optional<Cursor> cursor; ///< set when it must be shown now

    bool operator==(const TextSelectionResponse &) const = default;
};

/// The words laid over a selection: which one is under the pointer, which are selected. Knows no
/// widget; the view forwards points (y up, its own coordinates) and redraws.
struct TextSelection
{
    using Response = TextSelectionResponse;

    std::vector<TextRegion> textRegions;
    Rect selectionBounds;
    std::set<int> selectedIndices;
    std::optional<int> hoveredIndex;
    std::function<void(const std::vector<TextRegion> &)> onSelectionChanged;
    bool passMouseEventsThrough = false;
    bool isDragging = false;
    std::optional<Point> dragStart;
    std::optional<int> selectionStartIndex;
    std::vector<int> readingOrderIndices; ///< made when it is first needed

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

    [[nodiscard]] Response mouseDown(Point at);
    [[nodiscard]] Response mouseDragged(Point at);
    [[nodiscard]] Response mouseUp();
    [[nodiscard]] Response mouseMoved(Point at);
    [[nodiscard]] Response mouseExited();
    [[nodiscard]] Response cursorUpdate(Point at) const;

private:
    void computeReadingOrder();
    void reportSelection() const;
};

} // namespace tovek
