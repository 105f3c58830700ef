// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Screens.h"

namespace tovek {

/// The screen that a window is brought forward on: the first whose frame holds the pointer, else
/// the main one. Absent when there is no screen.
std::optional<Screen> targetScreen(const Screens &screens);

/// Where the window (global points, y up) moves for it: the middle of the screen's visible frame.
/// Absent when the window's middle is on that screen already; it keeps its place then.
std::optional<Point> originOnScreen(const Rect &window, const Screen &target);

} // namespace tovek
