// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Geometry.h"
#include "foundation/Keys.h"

class QKeyEvent;
class QMouseEvent;

namespace tovek {

class KeyboardLayout;

/// A key event of our own windows in the words of the rules. Letters are Latin whatever the layout
/// (with its help; without it, a letter of another script stays what it is); Ctrl and Super both
/// count as Command.
KeyPress keyPressFrom(const QKeyEvent &event, const KeyboardLayout *layout);

/// Where a mouse event of a window that fills its screen is, in points with y up: the pixel's own
/// place, also between whole points.
Point pointFrom(const QMouseEvent &event, const ViewSpace &space);

} // namespace tovek
