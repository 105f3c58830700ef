// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/AnnotationEditor.h"
#include "overlay/OverlayKeys.h"

namespace tovek {

/// Does to the annotations what the key asks for: a tool, undo, redo, a step of the selected one or
/// its removal. Nothing for an action that is not theirs. `key` is the one that stands for the
/// action.
AnnotationEditor::Effect editWithKey(AnnotationEditor &editor, OverlayKeyAction action,
                                     const KeyPress &key);

} // namespace tovek
