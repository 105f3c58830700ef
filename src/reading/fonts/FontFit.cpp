// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/fonts/FontFit.h"

#include "reading/InkSegments.h"
#include "reading/LineStrip.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace tovek {

namespace {

/// Different letters that are compared; more tell nothing new.
constexpr std::size_t mostSamples = 24;
/// The same letter in the same font and size differs by less, another one by more.
constexpr double sameLetter = 0.12;

Glyph pictureOf(const InkMap &ink, const QRect &box)
{
    Glyph glyph{box, {}};
    glyph.ink.reserve(std::size_t(box.width()) * box.height());
    for (int y = box.top(); y <= box.bottom(); ++y)
        glyph.ink.insert(glyph.ink.end(), ink.row(y) + box.left(), ink.row(y) + box.right() + 1);
    return trimmed(glyph);
}

int modulo(int value, int divisor)
{
    return (value % divisor + divisor) % divisor;
}

} // namespace

std::vector<LetterSample> letterSamples(const InkMap &ink, const std::vector<PageRun> &runs,
                                        const FixedGrid &grid)
{
    std::map<std::pair<int, std::vector<std::uint8_t>>, LetterSample> known; // by width and ink
    for (const std::size_t run : grid.runs) {
        // The soft edges of letters may touch, their strokes do not.
        const InkMap even = evenInk(ink, runs[run].text, runs[run].metrics);
        for (const InkPatch &patch : inkPatches(even, strokeInk)) {
            // Dots and dashes look alike in all fonts; wider patches are several letters.
            if (patch.box.width() > grid.cellWidth + 1
                || patch.box.height() < runs[run].metrics.xHeight * 0.8)
                continue;
            Glyph glyph = pictureOf(ink, patch.box.translated(runs[run].text.box.topLeft()));
            const auto [at, isNew] = known.try_emplace(std::pair(glyph.box.width(), glyph.ink));
            if (isNew)
                at->second = {std::move(glyph), int(std::lround(runs[run].metrics.baseline)), 1, 0};
            else
                ++at->second.count;
        }
    }
    std::vector<LetterSample> samples;
    for (auto &[ink_, sample] : known)
        samples.push_back(std::move(sample));
    std::stable_sort(samples.begin(), samples.end(),
                     [](const auto &a, const auto &b) { return a.count > b.count; });
    if (samples.size() > mostSamples)
        samples.resize(mostSamples);
    return samples;
}

FontFit fitOf(const std::vector<LetterSample> &samples, const std::vector<NamedGlyph> &letters,
              int cellWidth)
{
    std::map<std::pair<int, int>, double> places; // the letters that agree on one
    double all = 0;
    for (const LetterSample &sample : samples) {
        std::map<std::pair<int, int>, double> own;
        for (const NamedGlyph &letter : letters) {
            if (std::abs(letter.glyph.box.width() - sample.glyph.box.width()) > 1
                || std::abs(letter.glyph.box.height() - sample.glyph.box.height()) > 1)
                continue;
            const QPoint pen = sample.glyph.box.topLeft() - letter.glyph.box.topLeft();
            const double distance = inkDistance(sample.glyph, letter.glyph);
            if (distance < sameLetter)
                own[{modulo(pen.x(), cellWidth), pen.y() - sample.baseline}] = sample.count;
        }
        for (const auto &[place, count] : own)
            places[place] += count;
        all += sample.count;
    }
    FontFit fit;
    for (const auto &[place, count] : places) {
        if (count > fit.explained)
            fit = {place.first, place.second, count};
    }
    fit.explained = all > 0 ? fit.explained / all : 0;
    return fit;
}

} // namespace tovek
