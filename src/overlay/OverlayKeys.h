// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Keys.h"

namespace tovek {

/// What a key does on the overlay.
enum class OverlayKeyAction {
    none, ///< not ours: a text box or nobody takes it
    cancel,
    deleteAnnotation,
    save,
    copy,
    pointerTool,
    rectangleTool,
    lineTool,
    arrowTool,
    textTool,
    undo,
    redo,
    nudge, ///< an arrow key; moves the selected annotation
};

/// `takesTools`: the selection is finalised and no text box is open. Whoever has the keyboard
/// while a text box is open asks only for the keys that the box does not take itself.
OverlayKeyAction overlayActionFor(const KeyPress &key, bool takesTools);

} // namespace tovek
