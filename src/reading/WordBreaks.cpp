// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/WordBreaks.h"

#include "reading/TextRuns.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tovek {

namespace {

/// Letters needed before a grid can be told from chance. Digits do not count: they are equally
/// wide in most proportional fonts too.
constexpr int leastLetters = 6;
/// How far, in cells, characters may stand off the middle of their cells on average.
constexpr double pitchTolerance = 0.11;
/// How much the cells of two lines in the same font may differ.
constexpr double samePitch = 0.03;
constexpr double sameSize = 0.08;
/// In cap heights: gaps narrower than the first are never, wider than the second always a blank.
constexpr double narrowestBlank = 0.14;
constexpr double widestLetterGap = 0.62;
/// In cap heights, above the usual gap between letters: what the engine calls a blank is one from
/// the first on; from the second on the gap alone tells. The engine rarely breaks a word that is
/// whole, but often misses a break beside a short word.
constexpr double blankWithEngine = 0.07;
constexpr double blankByItself = 0.18;
constexpr double besideMarks = 0.15;
constexpr double blankInProportional = 0.28;

/// What a gap lacks, in cap heights, because a letter's ink hangs over its edge, or has too much
/// because the character stands in a wide cell of its own, as the 1 among digits or a backtick.
double bearing(const QString &before, const QString &after)
{
    static const QString farRight = QStringLiteral("f");
    static const QString right = QStringLiteral("rtTFPVWYvwyk/");
    static const QString left = QStringLiteral("TVWYvwyA/");
    const double beside = farRight.contains(before) ? 0.1 : right.contains(before) ? 0.05 : 0;
    const double hanging = after == QLatin1String("j") ? 0.12 : left.contains(after) ? 0.05 : 0;
    const auto cell = [](const QString &text) {
        return text == QLatin1String("1") ? 0.12 : text == QLatin1String("`") ? 0.15 : 0;
    };
    return beside + hanging - cell(before) - cell(after);
}

double gapBefore(const std::vector<InkSymbol> &symbols, std::size_t i, double capHeight)
{
    return (symbols[i].box.left() - symbols[i - 1].box.right() - 1) / capHeight
        + bearing(symbols[i - 1].text, symbols[i].text);
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

/// A gap between these is a letter gap or a blank by its width alone; beside other marks fonts
/// leave more room.
bool isTold(const QString &before, const QString &after)
{
    const QChar left = before.back();
    return after.at(0).isLetterOrNumber() && (left.isLetterOrNumber() || left == ',');
}

/// How likely a gap is a blank, by its width and by whether the engine saw one: it rarely breaks a
/// word that is whole, but often misses a break beside a short one.
double likelihoodOfBlank(double gap, bool isTold, bool isEngineBreak)
{
    const double byWidth = isTold ? std::clamp((gap - 0.25) / 0.2, 0.0, 1.0) : 0.0;
    return isEngineBreak ? 0.5 + 0.5 * byWidth : 0.75 * byWidth;
}

/// The gap width, in cap heights, that divides the line's gaps into two kinds: far from any gap,
/// and at odds with few of their likelihoods.
double dividingGap(const std::vector<double> &gaps, const std::vector<InkSymbol> &symbols)
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
            cost += 2
                * std::abs((gaps[k] > divide)
                           - likelihoodOfBlank(gaps[k],
                                               isTold(symbols[k].text, symbols[k + 1].text),
                                               symbols[k + 1].startsWord));
        if (cost < lowestCost) {
            lowestCost = cost;
            best = divide;
        }
    }
    return best;
}

/// Letters of about the same width look like a grid until the first blank, which is narrower than
/// a cell in proportional text.
bool agreesWithEngine(const Pitch &pitch, const std::vector<InkSymbol> &symbols, double capHeight)
{
    int breaks = 0;
    int refused = 0;
    for (std::size_t i = 1; i < symbols.size(); ++i) {
        if (!symbols[i].startsWord || gapBefore(symbols, i, capHeight) < blankInProportional)
            continue;
        ++breaks;
        refused += pitch.cells[i] - pitch.cells[i - 1] == 1;
    }
    return refused == 0 || refused * 2 < breaks;
}

/// A grid that happens to fit a few letters breaks words where the ink has no blank.
bool breaksAtBlanks(const Pitch &pitch, const std::vector<InkSymbol> &symbols, double capHeight)
{
    for (std::size_t i = 1; i < symbols.size(); ++i) {
        if (pitch.cells[i] - pitch.cells[i - 1] > 1
            && gapBefore(symbols, i, capHeight) < blankInProportional)
            return false;
    }
    return true;
}

double usualLetterGap(const std::vector<double> &gaps, double divide)
{
    std::vector<double> letterGaps;
    std::copy_if(gaps.begin(), gaps.end(), std::back_inserter(letterGaps),
                 [divide](double gap) { return gap < divide; });
    if (letterGaps.empty())
        return 0;
    const auto middle = letterGaps.begin() + std::ptrdiff_t(letterGaps.size() / 2);
    std::nth_element(letterGaps.begin(), middle, letterGaps.end());
    return std::max(0.0, *middle);
}

} // namespace

std::optional<Pitch> fixedPitch(const std::vector<InkSymbol> &symbols, double capHeight)
{
    const auto letters = std::count_if(symbols.begin(), symbols.end(), [](const InkSymbol &one) {
        return !one.text.at(0).isDigit();
    });
    if (letters < leastLetters)
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

std::optional<Pitch> onPitch(const std::vector<InkSymbol> &symbols, double cellWidth)
{
    if (symbols.size() < 3)
        return std::nullopt;
    std::vector<double> centers;
    for (const InkSymbol &symbol : symbols)
        centers.push_back(centerX(symbol.box));
    Pitch pitch{cellWidth, {}};
    if (fit(centers, pitch) > pitchTolerance
        || std::abs(pitch.width - cellWidth) > cellWidth * samePitch)
        return std::nullopt;
    return pitch;
}

void breakWords(std::vector<InkSymbol> &symbols, double capHeight,
                const std::vector<double> &cellWidths)
{
    if (symbols.empty())
        return;
    symbols.front().startsWord = true;
    auto pitch = fixedPitch(symbols, capHeight);
    for (std::size_t i = 0; !pitch && i < cellWidths.size(); ++i)
        pitch = onPitch(symbols, cellWidths[i]);
    if (pitch && !breaksAtBlanks(*pitch, symbols, capHeight))
        pitch.reset();
    if (pitch && agreesWithEngine(*pitch, symbols, capHeight)) {
        for (std::size_t i = 1; i < symbols.size(); ++i)
            symbols[i].startsWord = pitch->cells[i] - pitch->cells[i - 1] > 1;
        return;
    }
    std::vector<double> gaps;
    for (std::size_t i = 1; i < symbols.size(); ++i)
        gaps.push_back(gapBefore(symbols, i, capHeight));
    const double divide = dividingGap(gaps, symbols);
    const double letterGap = usualLetterGap(gaps, divide);
    for (std::size_t i = 1; i < symbols.size(); ++i) {
        const double gap = gaps[i - 1];
        if (symbols[i].startsWord)
            symbols[i].startsWord = gap > std::max(narrowestBlank, letterGap + blankWithEngine);
        else
            symbols[i].startsWord = gap > std::max(divide, letterGap + blankByItself)
                    + (isTold(symbols[i - 1].text, symbols[i].text) ? 0 : besideMarks);
    }
}

void breakAllWords(std::vector<ReadPiece> &pieces)
{
    std::vector<std::pair<double, double>> known; // cap height and cell width
    for (const ReadPiece &piece : pieces) {
        const double cap = piece.metrics.capHeight;
        const auto pitch = fixedPitch(piece.symbols, cap);
        if (pitch && agreesWithEngine(*pitch, piece.symbols, cap))
            known.push_back({cap, pitch->width});
    }
    for (ReadPiece &piece : pieces) {
        std::vector<double> cells;
        for (const auto &[cap, width] : known) {
            const bool isSame = std::abs(cap - piece.metrics.capHeight) <= cap * sameSize;
            const bool isNew = std::none_of(cells.begin(), cells.end(), [w = width](double other) {
                return std::abs(other - w) < w * samePitch / 2;
            });
            if (isSame && isNew)
                cells.push_back(width);
        }
        breakWords(piece.symbols, piece.metrics.capHeight, cells);
    }
}

} // namespace tovek
