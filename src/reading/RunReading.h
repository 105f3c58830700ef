// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/LineEngine.h"

namespace tovek {

/// A character of the reading together with the ink that it names. Characters that share ink stand
/// one after the other and form a unit.
struct InkSymbol
{
    QString text; ///< empty for ink that was passed over
    QRect box;
    double confidence = 0; ///< 0 to 100
    bool startsWord = false;
    int shared = 1; ///< characters that this one's ink is divided among
    QRect unit{}; ///< all the ink that this character has a part in
    std::vector<std::uint8_t> glyph{}; ///< of the unit, row by row; only at its first character
    bool isByLook = false; ///< named as equal ink was read elsewhere
};

/// Gives each character the segments that it names: touching letters share one, a character may
/// take several. Ink that was passed over is named where its shape is plain (dots, dashes,
/// underscores), and those are counted as the ink has them; other ink that was passed over stands
/// there without a text. Characters without ink are dropped.
std::vector<InkSymbol> alignedSymbols(const std::vector<EngineSymbol> &symbols,
                                      const LineStrip &strip, const std::vector<QRect> &segments,
                                      const LetterMetrics &metrics);

/// One of the parts of equal width that a box is divided into.
QRect sliceOf(const QRect &box, int part, int parts);

} // namespace tovek
