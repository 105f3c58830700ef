// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/PointerOwner.h"

#include <QCursor>

namespace tovek {

/// The pointer's shape over a place of the overlay, which is the owner's: a cross wherever a drag
/// would begin a selection or draw, a beam over words, an arrow elsewhere, and over a handle the
/// way in which it pulls. The state has been told of the place already.
Qt::CursorShape overlayCursorAt(Point at, PointerOwner owner, const SelectionState &state,
                                AnnotationTool tool);

/// How the shape looks on a screen of that scale. The cross is a picture of our own with the hot
/// spot at its centre, made once a scale; for `cursorScale` see Screen. Needs a QGuiApplication.
QCursor overlayCursor(Qt::CursorShape shape, double scale, int cursorScale = 1);

} // namespace tovek
