// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/ReadWords.h"

namespace tovek {

/// A stretch of a run as it was read: letter by letter, or in the engine's own words where letters
/// join and reorder (see Script). One of the two lists is empty.
struct ReadPiece
{
    LetterMetrics metrics;
    std::vector<InkSymbol> symbols{};
    std::vector<ReadWord> words{};
    bool isInRightToLeft = false; ///< letters or digits in a line that goes the other way
};

} // namespace tovek
