// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/RunReading.h"

namespace tovek {

/// Names the backticks of a run, which the engine takes for quotes and asterisks or passes over
/// because it knows no such character: of all small marks at a capital's height they alone lean to
/// the left. The symbols must have their glyphs.
void nameBackticks(std::vector<InkSymbol> &symbols, const LetterMetrics &metrics);

} // namespace tovek
