// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/LineEngine.h"

#include <QRect>

namespace tovek {

/// A word as the engine gave it, with the ink that it names.
struct EngineWord
{
    QString text;
    double left = 0; ///< by the engine, in the picture's pixels; up to a letter off
    double right = 0;
    double confidence = 0; ///< the mean of its characters
    QRect box{}; ///< of its ink; empty where it has none
};

/// From left to right, whatever the order of reading is. Combining marks and punctuation that the
/// engine sets apart belong to the word beside them.
std::vector<EngineWord> engineWords(const std::vector<EngineSymbol> &symbols,
                                    const LineStrip &strip);

/// The characters with the words from left to right. In a line that it takes for one from right to
/// left the engine gives Latin words the other way round.
std::vector<EngineSymbol> inVisualOrder(const std::vector<EngineSymbol> &symbols);

/// Gives each word its ink: the line is cut at the gaps that lie near the ends of the words and are
/// wide. `segments` from left to right, `letterHeight` in pixels.
void takeInk(std::vector<EngineWord> &words, const std::vector<QRect> &segments,
             double letterHeight);

/// Joins what no blank divides, for scripts that the engine divides into syllables although they
/// have blanks between words (Korean) or no breaks to speak of (Thai).
void joinAtBlanks(std::vector<EngineWord> &words, double letterHeight);

} // namespace tovek
