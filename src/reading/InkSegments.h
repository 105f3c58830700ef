// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/TextRuns.h"

namespace tovek {

/// Of 255, in even ink: weaker ink is the soft edge of a stroke.
inline constexpr int strokeInk = 100;

/// Pieces of ink that stand side by side, in the picture's pixels: the dot is with its i. `ink` as
/// from evenInk. Soft edges do not count, so that letters which only their edges join are apart.
std::vector<QRect> inkSegments(const InkMap &ink, const TextRun &run);

/// True for the ink of a tilde, which rises on its left and falls on its right where dashes lie
/// level. `box` in the map's own pixels.
bool isWave(const InkMap &ink, const QRect &box);

} // namespace tovek
