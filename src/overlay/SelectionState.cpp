// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/SelectionState.h"

namespace tovek {

SelectionState::Press SelectionState::press(Point pointer)
{
    const Point at = edgeOf(pointer);
    if (!isSelectionFinalized || !selectionRect) {
        selectionStart = at;
        selectionRect = Rect{at.x, at.y, 0, 0};
        return Press::startedSelection;
    }
    if (const auto handle = handleUnder(pointer)) {
        activeHandle = handle;
        resizeStartRect = selectionRect;
        selectionStart = at;
        return Press::startedResize;
    }
    return selectionRect->contains(pointer) ? Press::insideSelection : Press::outsideSelection;
}

bool SelectionState::moveTo(Point pointer)
{
    if (!selectionStart)
        return false;
    const Point at = edgeOf(pointer);
    Rect moved;
    if (isResizing()) {
        moved = resized(*resizeStartRect, *activeHandle, at.x - selectionStart->x,
                        at.y - selectionStart->y);
        if (screen)
            moved = pushedToEdges(moved, *activeHandle, at, screen->size);
    } else if (!isSelectionFinalized) {
        moved = Rect::spanning(*selectionStart, at);
    } else {
        return false;
    }
    if (moved == selectionRect)
        return false;
    selectionRect = moved;
    return true;
}

SelectionState::Release SelectionState::release()
{
    const std::optional<Rect> part = selectionOnScreen();
    const bool isLarge =
        part && part->width > acceptedSelectionSide && part->height > acceptedSelectionSide;
    if (isLarge && (activeHandle || !isSelectionFinalized))
        selectionRect = part;
    if (activeHandle) {
        activeHandle.reset();
        resizeStartRect.reset();
        selectionStart.reset();
        return isLarge ? Release::finalised : Release::nothing;
    }
    if (isSelectionFinalized)
        return Release::nothing;
    selectionStart.reset();
    if (isLarge) {
        isSelectionFinalized = true;
        return Release::finalised;
    }
    const bool hadAttempt = selectionRect.has_value();
    selectionRect.reset();
    return hadAttempt ? Release::discarded : Release::nothing;
}

bool SelectionState::hover(std::optional<Point> pointer)
{
    const auto handle = pointer ? handleUnder(*pointer) : std::nullopt;
    if (handle == hoveredHandle)
        return false;
    hoveredHandle = handle;
    return true;
}

std::optional<ResizeHandle> SelectionState::handleUnder(Point pointer) const
{
    return isSelectionFinalized && selectionRect ? handleAt(edgeOf(pointer), *selectionRect)
                                                 : std::nullopt;
}

std::optional<Rect> SelectionState::selectionOnScreen() const
{
    return selectionRect && screen ? partOnScreen(*selectionRect, screen->size) : selectionRect;
}

Point SelectionState::edgeOf(Point pointer) const
{
    return screen ? edgeAt(pointer, *screen) : pointer;
}

} // namespace tovek
