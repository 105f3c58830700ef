// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/ocr/WordBreaks.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tovek {

namespace {

/// Characters needed before a grid can be told from chance.
constexpr std::size_t leastForPitch = 6;
/// How far, in cells, characters may stand off the middle of their cells on average.
constexpr double pitchTolerance = 0.13;
/// In cap heights: gaps narrower than the first are never, wider than the second always a blank.
constexpr double narrowestBlank = 0.14;
constexpr double widestLetterGap = 0.62;
/// In cap heights: gaps this close to the dividing width are left to the engine. It rarely breaks
/// a word that is whole, but often misses a break beside a short word.
constexpr double doubtAbove = 0.02;
constexpr double doubtBelow = 0.14;

double centerX(const QRect &box)
{
    return box.left() + box.width() / 2.0;
}

double gapBefore(const std::vector<InkSymbol> &symbols, std::size_t i)
{
    return symbols[i].box.left() - symbols[i - 1].box.right() - 1;
}

/// Puts the centers on cells of about `width` and fits the width to them; the mean distance from
/// the cells' middles, in cells.
double fit(const std::vector<double> &centers, Pitch &pitch)
{
    const auto count = double(centers.size());
    for (int round = 0; round < 3; ++round) {
        pitch.cells.assign(centers.size(), 0);
        for (std::size_t i = 1; i < centers.size(); ++i) {
            const double cells = (centers[i] - centers[i - 1]) / pitch.width;
            pitch.cells[i] = pitch.cells[i - 1] + std::max(1, int(std::lround(cells)));
        }
        double meanCell = 0;
        double meanCenter = 0;
        for (std::size_t i = 0; i < centers.size(); ++i) {
            meanCell += pitch.cells[i] / count;
            meanCenter += centers[i] / count;
        }
        double both = 0;
        double square = 0;
        for (std::size_t i = 0; i < centers.size(); ++i) {
            both += (pitch.cells[i] - meanCell) * (centers[i] - meanCenter);
            square += (pitch.cells[i] - meanCell) * (pitch.cells[i] - meanCell);
        }
        if (square <= 0 || both <= 0)
            return std::numeric_limits<double>::infinity();
        pitch.width = both / square;
        double error = 0;
        for (std::size_t i = 0; i < centers.size(); ++i) {
            const double at = meanCenter + (pitch.cells[i] - meanCell) * pitch.width;
            error += std::abs(centers[i] - at) / pitch.width / count;
        }
        if (round == 2)
            return error;
    }
    return std::numeric_limits<double>::infinity();
}

/// The gap width, in cap heights, that divides the line's gaps into two kinds: far from any gap,
/// and at odds with few of the engine's breaks.
double dividingGap(const std::vector<double> &gaps, const std::vector<bool> &engineBreaks)
{
    std::vector<double> sorted = gaps;
    sorted.push_back(narrowestBlank);
    sorted.push_back(widestLetterGap);
    std::sort(sorted.begin(), sorted.end());
    double best = (narrowestBlank + widestLetterGap) / 2;
    double lowestCost = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i + 1 < sorted.size(); ++i) {
        const double low = std::max(sorted[i], narrowestBlank);
        const double high = std::min(sorted[i + 1], widestLetterGap);
        if (high <= low)
            continue;
        const double divide = (low + high) / 2;
        double cost = -6 * std::min(high - low, 0.25);
        for (std::size_t k = 0; k < gaps.size(); ++k)
            cost += (gaps[k] > divide) != engineBreaks[k];
        if (cost < lowestCost) {
            lowestCost = cost;
            best = divide;
        }
    }
    return best;
}

} // namespace

std::optional<Pitch> fixedPitch(const std::vector<InkSymbol> &symbols, double capHeight)
{
    if (symbols.size() < leastForPitch)
        return std::nullopt;
    std::vector<double> centers;
    std::vector<double> distances;
    for (const InkSymbol &symbol : symbols) {
        if (!centers.empty())
            distances.push_back(centerX(symbol.box) - centers.back());
        centers.push_back(centerX(symbol.box));
    }
    std::nth_element(distances.begin(), distances.begin() + std::ptrdiff_t(distances.size() / 2),
                     distances.end());
    Pitch pitch{distances[distances.size() / 2], {}};
    if (pitch.width < capHeight * 0.5 || pitch.width > capHeight * 1.3)
        return std::nullopt;
    if (fit(centers, pitch) > pitchTolerance)
        return std::nullopt;
    return pitch;
}

void breakWords(std::vector<InkSymbol> &symbols, double capHeight)
{
    if (symbols.empty())
        return;
    symbols.front().startsWord = true;
    if (const auto pitch = fixedPitch(symbols, capHeight)) {
        for (std::size_t i = 1; i < symbols.size(); ++i)
            symbols[i].startsWord = pitch->cells[i] - pitch->cells[i - 1] > 1;
        return;
    }
    std::vector<double> gaps;
    std::vector<bool> engineBreaks;
    for (std::size_t i = 1; i < symbols.size(); ++i) {
        gaps.push_back(gapBefore(symbols, i) / capHeight);
        engineBreaks.push_back(symbols[i].startsWord);
    }
    const double divide = dividingGap(gaps, engineBreaks);
    for (std::size_t i = 1; i < symbols.size(); ++i) {
        const double above = gaps[i - 1] - divide;
        if (above > doubtAbove || above < -doubtBelow || gaps[i - 1] < narrowestBlank)
            symbols[i].startsWord = above > 0;
    }
}

} // namespace tovek
