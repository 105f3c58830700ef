// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/RunReading.h"

namespace tovek {

/// Settles characters that look alike by what the engine does not see: their height on the line
/// (c and C), whether there is a dot or a flag, and the characters beside them (l, I and 1; 0 and
/// O). Word breaks must be set.
void settleLookAlikes(std::vector<InkSymbol> &symbols, const LetterMetrics &metrics);

} // namespace tovek
