// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/ocr/LineEngine.h"

namespace tovek {

/// A character of the reading together with the ink that it names.
struct InkSymbol
{
    QString text;
    QRect box;
    double confidence = 0; ///< 0 to 100
    bool startsWord = false;
    int shared = 1; ///< characters that this one's ink is divided among
};

struct ReadWord
{
    QString text;
    QRect box;
    double confidence = 0; ///< the mean of its characters

    bool operator==(const ReadWord &) const = default;
};

/// Gives each character the segments that it names: touching letters share one, a character may
/// take several. Ink that was passed over is named where its shape is plain (dots, dashes,
/// underscores), and those are counted as the ink has them; characters without ink are dropped.
std::vector<InkSymbol> alignedSymbols(const std::vector<EngineSymbol> &symbols,
                                      const LineStrip &strip, const std::vector<QRect> &segments,
                                      const LetterMetrics &metrics);

/// The words of a run, in order.
std::vector<ReadWord> readWords(const std::vector<InkSymbol> &symbols);

} // namespace tovek
