// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/fonts/FontSearch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace tovek {

namespace {

/// The letters of a bitmap font are found as they are, but for those that touch or have a dot;
/// two terminals in the same columns may have different fonts.
constexpr double leastExplained = 0.3;

/// Letters that nearly every text has, and digits for those without letters.
constexpr std::u32string_view commonLetters = U"eaosnrtc01d2";
/// A letter that differs more from all in the picture is not there in this font and size.
constexpr double sameLetter = 0.15;
/// The same for a font of which the size and the way of drawing are only roughly right.
constexpr double similarLetter = 0.4;
/// Sizes, over those that have the cell's width, in which a font is tried roughly.
constexpr int roughSizes = 4;
/// The right font has nearly always been among the first two or three.
constexpr std::size_t mostFonts = 6;
/// Common letters that must be there before a font is looked at closely.
constexpr int leastSampleLetters = 4;
/// After so many common letters, so many must have been there, or the font is given up.
constexpr std::array<std::pair<int, int>, 3> giveUp{{{3, 1}, {5, 2}, {8, 3}}};

/// Sizes between usual ones are met too: servers differ in their dots per inch. A difference of a
/// tenth of a pixel changes what hinting makes of a letter.
constexpr double sizeStep = 0.1;
/// Half a point at the usual 96 dots per inch.
constexpr double halfPoint = 2.0 / 3;

std::vector<double> sizesFor(double advance, int cellWidth)
{
    const double from = (cellWidth - 0.5) / advance;
    const double to = (cellWidth + 0.5) / advance;
    std::vector<double> sizes;
    for (const double step : {sizeStep, halfPoint}) {
        for (double i = std::ceil(from / step); i * step < to; ++i)
            sizes.push_back(i * step);
    }
    std::sort(sizes.begin(), sizes.end());
    sizes.erase(std::unique(sizes.begin(), sizes.end(),
                            [](double a, double b) { return b - a < 1.0 / 64; }),
                sizes.end());
    return sizes;
}

constexpr std::array<GlyphStyle, 7> waysOfDrawing{{{0, Hinting::light, false},
                                                   {0, Hinting::full, false},
                                                   {0, Hinting::none, false},
                                                   {0, Hinting::light, true},
                                                   {0, Hinting::full, true},
                                                   {0, Hinting::none, true},
                                                   {0, Hinting::mono, false}}};

int modulo(int value, int divisor)
{
    return (value % divisor + divisor) % divisor;
}

} // namespace

std::vector<FontGuess> bitmapGuesses(GlyphSource &source, const std::vector<LetterSample> &samples,
                                     const FixedGrid &grid)
{
    std::vector<FontGuess> guesses;
    for (std::size_t i = 0; i < source.fonts().size(); ++i) {
        const FixedFont &font = source.fonts()[i];
        if (!font.isBitmap || std::lround(font.advance) != grid.cellWidth)
            continue;
        std::vector<NamedGlyph> letters = lettersOf(source, {i, {}});
        const FontFit fit = fitOf(samples, letters, grid.cellWidth);
        if (fit.explained >= leastExplained)
            guesses.push_back({{i, {}}, fit, 0});
    }
    std::stable_sort(guesses.begin(), guesses.end(), [](const FontGuess &a, const FontGuess &b) {
        return a.fit.explained > b.fit.explained;
    });
    return guesses;
}

FontSearch::FontSearch(GlyphSource &source, std::vector<std::size_t> fonts,
                       std::vector<LetterSample> samples, int cellWidth)
    : m_source(source)
    , m_fonts(std::move(fonts))
    , m_samples(std::move(samples))
    , m_cellWidth(cellWidth)
{
}

std::optional<FontGuess> FontSearch::next(const std::function<bool()> &isTooLate)
{
    if (!m_isRanked && !rank(isTooLate))
        return std::nullopt;
    while (m_next < m_ranked.size() && !isTooLate()) {
        if (const auto guess = guessOf(m_ranked[m_next++].font))
            return guess;
    }
    return std::nullopt;
}

bool FontSearch::rank(const std::function<bool()> &isTooLate)
{
    for (; m_next < m_fonts.size(); ++m_next) {
        if (isTooLate())
            return false;
        const FixedFont &font = m_source.fonts()[m_fonts[m_next]];
        if (font.isBitmap)
            continue;
        Ranked ranked{m_fonts[m_next], 0};
        for (int i = 0; i < roughSizes; ++i) {
            const double width = m_cellWidth - 0.5 + (i + 0.5) / roughSizes;
            FontGuess guess{{ranked.font, {width / font.advance, Hinting::light, false}}, {}, 0};
            ranked.score = std::max(ranked.score, scoreOf(guess, similarLetter));
        }
        if (ranked.score > 0)
            m_ranked.push_back(ranked);
    }
    std::stable_sort(m_ranked.begin(), m_ranked.end(),
                     [](const Ranked &a, const Ranked &b) { return a.score > b.score; });
    if (m_ranked.size() > mostFonts)
        m_ranked.resize(mostFonts);
    m_isRanked = true;
    m_next = 0;
    return true;
}

std::optional<FontGuess> FontSearch::guessOf(std::size_t font)
{
    FontGuess best;
    double bestScore = 0;
    for (const double size : sizesFor(m_source.fonts()[font].advance, m_cellWidth)) {
        for (GlyphStyle style : waysOfDrawing) {
            style.size = size;
            FontGuess guess{{font, style}, {}, 0};
            const double score = scoreOf(guess, sameLetter);
            if (score > bestScore) {
                bestScore = score;
                best = guess;
            }
        }
    }
    return bestScore > 0 ? std::optional(best) : std::nullopt;
}

double FontSearch::scoreOf(FontGuess &guess, double tolerance)
{
    struct Agreement
    {
        int letters = 0;
        double score = 0;
    };
    std::map<std::pair<int, int>, Agreement> places;
    int tried = 0;
    int most = 0;
    for (const char32_t character : commonLetters) {
        const auto drawn =
            m_source.glyph(guess.choice.font, guess.choice.style, FontFace::own, character);
        if (!drawn || drawn->isEmpty())
            return 0;
        const Glyph letter = trimmed(*drawn);
        std::map<std::pair<int, int>, double> nearest;
        for (const LetterSample &sample : m_samples) {
            if (std::abs(letter.box.width() - sample.glyph.box.width()) > 1
                || std::abs(letter.box.height() - sample.glyph.box.height()) > 1)
                continue;
            const QPoint pen = sample.glyph.box.topLeft() - letter.box.topLeft();
            const double closeness = tolerance - inkDistance(sample.glyph, letter);
            if (closeness > 0) {
                double &known = nearest[{modulo(pen.x(), m_cellWidth), pen.y() - sample.baseline}];
                known = std::max(known, closeness);
            }
        }
        for (const auto &[place, closeness] : nearest) {
            Agreement &agreement = places[place];
            most = std::max(most, ++agreement.letters);
            agreement.score += closeness;
        }
        ++tried;
        for (const auto &[after, least] : giveUp) {
            if (tried == after && most < least)
                return 0;
        }
    }
    double best = 0;
    for (const auto &[place, agreement] : places) {
        if (agreement.letters >= leastSampleLetters && agreement.score > best) {
            best = agreement.score;
            guess.fit = {place.first, place.second, double(agreement.letters) / tried};
            guess.distance = tolerance - agreement.score / agreement.letters;
        }
    }
    return best;
}

} // namespace tovek
