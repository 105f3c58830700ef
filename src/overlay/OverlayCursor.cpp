// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/OverlayCursor.h"

namespace tovek {

namespace {

Qt::CursorShape cursorOf(ResizeHandle handle)
{
    switch (handle) {
    case ResizeHandle::left:
    case ResizeHandle::right:
        return Qt::SizeHorCursor;
    case ResizeHandle::top:
    case ResizeHandle::bottom:
        return Qt::SizeVerCursor;
    case ResizeHandle::topLeft:
    case ResizeHandle::bottomRight:
        return Qt::SizeFDiagCursor;
    case ResizeHandle::topRight:
    case ResizeHandle::bottomLeft:
        return Qt::SizeBDiagCursor;
    }
    Q_UNREACHABLE();
}

} // namespace

Qt::CursorShape overlayCursorAt(Point at, const SelectionState &state, AnnotationTool tool)
{
    if (!state.isSelectionFinalized || !state.selectionRect)
        return Qt::CrossCursor;
    if (state.hoveredHandle)
        return cursorOf(*state.hoveredHandle);
    const bool draws = tool != AnnotationTool::none && state.selectionRect->contains(at);
    return draws ? Qt::CrossCursor : Qt::ArrowCursor;
}

} // namespace tovek
