// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/fonts/FixedGrid.h"
#include "reading/fonts/GlyphTable.h"

#include <optional>

namespace tovek {

/// A letter that stands alone in the picture.
struct LetterSample
{
    Glyph glyph; ///< trimmed; the box in the picture
    int baseline = 0; ///< as measured for its line, which may be a pixel or two off
    int count = 1; ///< places with the very same ink
    char32_t name = 0; ///< as the engine read it; 0 when it has not
};

/// Different letters from a grid's lines, the commonest first.
std::vector<LetterSample> letterSamples(const InkMap &ink, const std::vector<PageRun> &runs,
                                        const FixedGrid &grid);

/// Where a font's cells lie if a grid is written in it.
struct FontFit
{
    int left = 0; ///< of the first cell in the picture
    int belowBaseline = 0; ///< of the font's baseline from that measured for a line
    double explained = 0; ///< the share of the letters that the font has at their places
};

/// Compares letters whose names are not known with all of a font's, by their ink alone.
FontFit fitOf(const std::vector<LetterSample> &samples, const std::vector<NamedGlyph> &letters,
              int cellWidth);

} // namespace tovek
