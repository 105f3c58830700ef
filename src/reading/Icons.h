// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/TextRuns.h"

#include <optional>

namespace tovek {

/// An icon that stands before its label has the ink of a character to the engine, and spoils the
/// label's first letters too. Where the run begins with one: the x at which its label begins.
/// An icon stands apart and reaches above and below the letters on its left and on its right side,
/// which no character does and no word of two letters. `strokes` is the run in patches of its
/// strokes alone, `ink` as from evenInk.
std::optional<int> labelAfterIcon(const InkMap &ink, const TextRun &strokes);

/// The run in two, at `x` between its patches.
std::pair<TextRun, TextRun> dividedAt(const TextRun &run, int x);

} // namespace tovek
