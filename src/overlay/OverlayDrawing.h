// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/AnnotationEditor.h"

namespace tovek {

/// What was drawn on an overlay, to go on with on another one over the same screen.
struct OverlayDrawing
{
    Rect selection; ///< in the view's points
    AnnotationEditor editor; ///< with tool, colour and what can be undone
};

} // namespace tovek
