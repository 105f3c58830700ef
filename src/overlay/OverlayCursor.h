// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/AnnotationEditor.h"
#include "overlay/SelectionState.h"

namespace tovek {

/// The pointer's shape over a place of the overlay: a cross wherever a drag would begin a selection
/// or draw, an arrow elsewhere, and over a handle the way in which it pulls. The state has been
/// told of the place already.
Qt::CursorShape overlayCursorAt(Point at, const SelectionState &state, AnnotationTool tool);

} // namespace tovek
