// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/SelectionState.h"

namespace tovek {

SelectionState::Press SelectionState::press(Point at)
{
    if (!isSelectionFinalized || !selectionRect) {
        selectionStart = at;
        selectionRect = Rect{at.x, at.y, 0, 0};
        return Press::startedSelection;
    }
    if (const auto handle = handleAt(at, *selectionRect)) {
        activeHandle = handle;
        resizeStartRect = selectionRect;
        selectionStart = at;
        return Press::startedResize;
    }
    return selectionRect->contains(at) ? Press::insideSelection : Press::outsideSelection;
}

bool SelectionState::moveTo(Point at)
{
    if (!selectionStart)
        return false;
    Rect moved;
    if (isResizing())
        moved = resized(*resizeStartRect, *activeHandle, at.x - selectionStart->x,
                        at.y - selectionStart->y);
    else if (!isSelectionFinalized)
        moved = Rect::spanning(*selectionStart, at);
    else
        return false;
    if (moved == selectionRect)
        return false;
    selectionRect = moved;
    return true;
}

SelectionState::Release SelectionState::release()
{
    const bool isLarge = selectionRect && selectionRect->width > acceptedSelectionSide
        && selectionRect->height > acceptedSelectionSide;
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

bool SelectionState::hover(Point at)
{
    const auto handle =
        isSelectionFinalized && selectionRect ? handleAt(at, *selectionRect) : std::nullopt;
    if (handle == hoveredHandle)
        return false;
    hoveredHandle = handle;
    return true;
}

} // namespace tovek
