// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/AnnotationEditor.h"
#include "overlay/SelectionState.h"

namespace tovek {

struct TextSelection;

/// Whose a press at a place of an overlay is, and hence what the pointer shows there.
enum class PointerOwner {
    selection, ///< nothing is accepted yet, or one of its handles is there
    words,
    annotations, ///< where there is none, the tools decide
};

/// Words are for the pointer tool only, and go before annotations that lie over them: one around a
/// word leaves none of it free. While an annotation is selected it is the other way round, so that
/// this one can be moved wherever it lies. `words`, in the selection's own points, may be null.
PointerOwner pointerOwnerAt(Point at, const SelectionState &state, const AnnotationEditor &editor,
                            const TextSelection *words);

} // namespace tovek
