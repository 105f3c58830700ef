// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/PointerOwner.h"

#include "text/TextSelection.h"

namespace tovek {

PointerOwner pointerOwnerAt(Point at, const SelectionState &state, const AnnotationEditor &editor,
                            const TextSelection *words)
{
    if (!state.isSelectionFinalized() || !state.selectionRect() || state.handleUnder(at))
        return PointerOwner::selection;
    const Rect &selection = *state.selectionRect();
    const bool isWord = words && editor.currentTool() == AnnotationTool::none
        && words->regionAt({at.x - selection.x, at.y - selection.y});
    if (!isWord)
        return PointerOwner::annotations;
    const bool isMoved = editor.selectedAnnotationIndex() && editor.hasAnnotationAt(at);
    return isMoved ? PointerOwner::annotations : PointerOwner::words;
}

} // namespace tovek
