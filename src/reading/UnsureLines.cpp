// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/UnsureLines.h"

namespace tovek {

namespace {

/// The mean over a line: letters that the engine has learnt come to 99, those of another script
/// to 95.
constexpr double sureLine = 97;
/// Shorter ones are icons and numbers.
constexpr int fewestLetters = 4;
constexpr double narrowestLine = 2; ///< in heights
constexpr std::size_t fewestPatches = 4;
/// Of all lines, in heights, so that a script shows.
constexpr double enoughText = 20;
constexpr std::size_t enoughLines = 40;
/// Of all lines. A few single ones among others are code, or in letters of another size.
constexpr double leastShare = 0.2;

} // namespace

bool isUnsure(const PageRun &run, const std::vector<ReadPiece> &pieces)
{
    const QRect &box = run.text.box;
    if (run.text.patches.size() < fewestPatches || box.width() < narrowestLine * box.height())
        return false;
    double sum = 0;
    int letters = 0;
    for (const ReadPiece &piece : pieces) {
        for (const InkSymbol &symbol : piece.symbols) {
            if (symbol.text.isEmpty() || symbol.confidence <= 0)
                continue;
            sum += symbol.confidence;
            ++letters;
        }
    }
    return letters >= fewestLetters && sum < sureLine * letters;
}

std::vector<LineStrip> stripsOf(const Page &page, const std::vector<std::size_t> &runs)
{
    double text = 0;
    for (const std::size_t run : runs)
        text += double(page.runs[run].text.box.width()) / page.runs[run].text.box.height();
    if (text < enoughText || double(runs.size()) < leastShare * double(page.runs.size()))
        return {};
    std::vector<LineStrip> strips;
    for (std::size_t i = 0; i < std::min(runs.size(), enoughLines); ++i) {
        const auto &[line, metrics] = page.runs[runs[i]];
        strips.push_back(lineStrip(evenInk(page.ink, line, metrics), line, metrics));
    }
    return strips;
}

} // namespace tovek
