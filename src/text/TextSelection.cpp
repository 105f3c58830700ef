// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "text/TextSelection.h"

#include "text/ReadingOrder.h"
#include "text/WordPlaces.h"

#include <cmath>
#include <limits>
#include <utility>

namespace tovek {

void TextSelection::add(const std::vector<TextRegion> &regions)
{
    textRegions.insert(textRegions.end(), regions.begin(), regions.end());
    readingOrderIndices.clear();
    if (dragEnd)
        (void)mouseDragged(*dragEnd);
}

void TextSelection::settle(std::vector<TextRegion> regions)
{
    const std::vector<TextRegion> before = std::exchange(textRegions, std::move(regions));
    readingOrderIndices.clear();
    hoveredIndex.reset();
    if (selectedIndices.empty())
        return;
    const WordPlaces places(textRegions);
    for (const int index : std::exchange(selectedIndices, {}))
        selectedIndices.merge(places.at(before[std::size_t(index)].boundingBox));
    if (dragStart)
        selectionStartIndex = regionNearest(*dragStart);
    if (dragEnd)
        (void)mouseDragged(*dragEnd);
}

Rect TextSelection::rectOf(int index) const
{
    const Rect &box = textRegions[std::size_t(index)].boundingBox;
    const Rect &bounds = selectionBounds;
    return {bounds.minX() + box.x * bounds.width, bounds.minY() + box.y * bounds.height,
            box.width * bounds.width, box.height * bounds.height};
}

std::optional<int> TextSelection::regionAt(Point at) const
{
    for (int i = 0; i < int(textRegions.size()); ++i) {
        if (rectOf(i).contains(at))
            return i;
    }
    return std::nullopt;
}

std::optional<int> TextSelection::regionNearest(Point at) const
{
    if (const auto index = regionAt(at))
        return index;
    std::optional<int> nearest;
    double least = std::numeric_limits<double>::infinity();
    for (int i = 0; i < int(textRegions.size()); ++i) {
        const Rect rect = rectOf(i);
        const double distance = std::hypot(rect.midX() - at.x, rect.midY() - at.y);
        if (distance < least) {
            least = distance;
            nearest = i;
        }
    }
    return nearest;
}

void TextSelection::selectRange(int from, int to)
{
    const std::set<int> range = rangeBetween(from, to, readingOrderIndices);
    if (!range.empty())
        selectedIndices = range;
}

std::vector<TextRegion> TextSelection::selectedRegions()
{
    std::vector<TextRegion> regions;
    if (selectedIndices.empty())
        return regions;
    computeReadingOrder();
    for (int index : readingOrderIndices) {
        if (selectedIndices.contains(index))
            regions.push_back(textRegions[std::size_t(index)]);
    }
    return regions;
}

bool TextSelection::mouseDown(Point at)
{
    computeReadingOrder();
    if (const auto index = regionAt(at)) {
        selectionStartIndex = index;
        dragStart = at;
        isDragging = true;
        selectedIndices = {*index};
        return true;
    }
    return selectNone();
}

bool TextSelection::selectNone()
{
    selectionStartIndex.reset();
    const bool hadSelection = !selectedIndices.empty();
    selectedIndices.clear();
    if (hadSelection)
        reportSelection();
    return hadSelection;
}

bool TextSelection::mouseDragged(Point at)
{
    if (!isDragging || !selectionStartIndex)
        return false;
    dragEnd = at;
    const auto target = regionNearest(at);
    if (!target)
        return false;
    computeReadingOrder();
    const std::set<int> before = selectedIndices;
    selectRange(*selectionStartIndex, *target);
    return selectedIndices != before;
}

void TextSelection::mouseUp()
{
    isDragging = false;
    dragStart.reset();
    dragEnd.reset();
    selectionStartIndex.reset();
    reportSelection();
}

bool TextSelection::mouseMoved(Point at)
{
    const std::optional<int> before = std::exchange(hoveredIndex, regionAt(at));
    return hoveredIndex != before;
}

bool TextSelection::mouseExited()
{
    return std::exchange(hoveredIndex, std::nullopt).has_value();
}

void TextSelection::computeReadingOrder()
{
    if (!readingOrderIndices.empty())
        return;
    std::vector<Rect> rects;
    for (int i = 0; i < int(textRegions.size()); ++i)
        rects.push_back(rectOf(i));
    readingOrderIndices = readingOrder(rects);
}

void TextSelection::reportSelection() const
{
    if (!onSelectionChanged)
        return;
    std::vector<TextRegion> regions;
    for (int index : selectedIndices)
        regions.push_back(textRegions[std::size_t(index)]);
    onSelectionChanged(regions);
}

} // namespace tovek
