// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/fonts/FontFit.h"

#include <functional>

namespace tovek {

/// A font that a grid may be written in.
struct FontGuess
{
    FontChoice choice;
    FontFit fit;
    double distance = 0; ///< of the letters that fit, in the mean
};

/// The bitmap fonts that explain most of the letters, the best first; few are ever left.
std::vector<FontGuess> bitmapGuesses(GlyphSource &source, const std::vector<LetterSample> &samples,
                                     const FixedGrid &grid);

/// Looks for the scalable font that a grid is written in: all fonts roughly, then the likeliest in
/// all sizes that have the cell's width and in all ways in which desktops draw.
class FontSearch
{
public:
    /// `fonts` in the order in which they are tried where nothing else tells.
    FontSearch(GlyphSource &source, std::vector<std::size_t> fonts,
               std::vector<LetterSample> samples, int cellWidth);

    /// The best guess of the next likeliest font; nothing when there is none left or when
    /// `isTooLate` answers true.
    std::optional<FontGuess> next(const std::function<bool()> &isTooLate);
    bool isOver() const { return m_isRanked && m_next == m_ranked.size(); }

private:
    struct Ranked
    {
        std::size_t font = 0;
        double score = 0;
    };
    /// False when it is too late.
    bool rank(const std::function<bool()> &isTooLate);
    /// One font in all sizes and ways of drawing.
    std::optional<FontGuess> guessOf(std::size_t font);
    /// How well a few common letters fit, and where; `tolerance` is the distance of a letter that
    /// does not fit at all.
    double scoreOf(FontGuess &guess, double tolerance);

    GlyphSource &m_source;
    std::vector<std::size_t> m_fonts; ///< to be ranked
    std::vector<LetterSample> m_samples;
    int m_cellWidth;
    std::vector<Ranked> m_ranked;
    std::size_t m_next = 0; ///< of the fonts, then of the ranked ones
    bool m_isRanked = false;
};

} // namespace tovek
