// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/fonts/FixedGrid.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <optional>

namespace tovek {

namespace {

/// Cells between the narrowest terminal font and the widest text on a large screen.
constexpr int narrowestCell = 4;
constexpr int widestCell = 48;
/// A cell's width in cap heights, from condensed fonts to the squarest bitmap ones.
constexpr double leastAspect = 0.5;
constexpr double mostAspect = 1.25;
/// Cells that a line must have before its gaps tell anything: letters of proportional text leave
/// the same column free in a few places too, but not in so many.
constexpr int leastCells = 10;
/// The ink at the cells' borders against that of the mean column: next to nothing in most fonts,
/// some where wide letters fill their cells.
constexpr double mostInkAtBorders = 0.3;
/// Baselines that tell the step between lines.
constexpr int leastLines = 3;
/// Letters in all that are worth a grid.
constexpr int leastGridLetters = 24;

/// Ink by columns of a run's box.
std::vector<int> columnsOf(const InkMap &ink, const TextRun &run)
{
    std::vector<int> columns(std::size_t(run.box.width()), 0);
    for (const InkPatch &patch : run.patches) {
        for (int y = patch.box.top(); y <= patch.box.bottom(); ++y) {
            const std::uint8_t *row = ink.row(y);
            for (int x = patch.box.left(); x <= patch.box.right(); ++x)
                columns[std::size_t(x - run.box.left())] += row[x];
        }
    }
    return columns;
}

/// A cell width that fits a run, and the column of the picture, modulo that width, that stays
/// free of ink.
struct Fit
{
    int border = 0;
    double inkAtBorders = 1;
};

Fit fitOf(const std::vector<int> &columns, int left, int cellWidth)
{
    std::vector<int> folded(std::size_t(cellWidth), 0);
    for (std::size_t i = 0; i < columns.size(); ++i)
        folded[(i + std::size_t(left)) % std::size_t(cellWidth)] += columns[i];
    const auto least = std::min_element(folded.begin(), folded.end());
    const int total = std::accumulate(folded.begin(), folded.end(), 0);
    return {int(least - folded.begin()), total > 0 ? double(*least) * cellWidth / total : 1};
}

/// The runs that a cell width fits, by their border columns.
struct Support
{
    std::map<int, std::vector<std::size_t>> runs;
    std::map<int, int> letters;
};

/// A border may seem a column off where a cell has two free ones.
int nearLetters(const Support &support, int border, int cellWidth)
{
    int letters = 0;
    for (const auto &[other, count] : support.letters) {
        const int apart = std::abs(other - border);
        if (std::min(apart, cellWidth - apart) <= 1)
            letters += count;
    }
    return letters;
}

struct Candidate
{
    int cellWidth = 0;
    int border = 0;
    int letters = 0;
};

/// The width with most letters; a multiple of it fits the same letters, so that a wider one must
/// do better.
std::optional<Candidate> bestOf(const std::map<int, Support> &widths)
{
    std::optional<Candidate> best;
    for (const auto &[cellWidth, support] : widths) {
        for (const auto &[border, count] : support.letters) {
            const int letters = nearLetters(support, border, cellWidth);
            if (letters >= leastGridLetters && (!best || letters > best->letters * 1.1))
                best = {cellWidth, border, letters};
        }
    }
    return best;
}

/// The lines of a grid: the step between them and the place of their baselines, modulo that step.
struct Lines
{
    int pitch = 0; ///< 0 when too few lines tell it
    int phase = 0;
};

/// The largest step that puts a good part of the baselines at the same place; those of another
/// window may lie between.
Lines linesOf(const std::vector<int> &baselines, int cellWidth)
{
    Lines best;
    if (int(baselines.size()) < leastLines)
        return best;
    int most = 0;
    for (int pitch = cellWidth; pitch <= cellWidth * 4; ++pitch) {
        std::vector<int> folded(std::size_t(pitch), 0);
        for (const int baseline : baselines)
            ++folded[std::size_t(baseline % pitch)];
        const auto agreeing = std::max_element(folded.begin(), folded.end());
        if (*agreeing >= most && *agreeing >= leastLines
            && *agreeing * 5 >= int(baselines.size()) * 2) {
            most = *agreeing;
            best = {pitch, int(agreeing - folded.begin())};
        }
    }
    return best;
}

int baselineOf(const LetterMetrics &metrics)
{
    return int(std::lround(metrics.baseline));
}

/// The lines that the candidate's letters stand in.
FixedGrid gridOf(const Candidate &candidate, const Support &support,
                 const std::vector<PageRun> &runs)
{
    FixedGrid grid{candidate.cellWidth, 0, {}};
    for (const auto &[border, members] : support.runs) {
        const int apart = std::abs(border - candidate.border);
        if (std::min(apart, candidate.cellWidth - apart) <= 1)
            grid.runs.insert(grid.runs.end(), members.begin(), members.end());
    }
    std::sort(grid.runs.begin(), grid.runs.end());
    std::vector<int> baselines;
    for (const std::size_t run : grid.runs)
        baselines.push_back(baselineOf(runs[run].metrics));
    std::sort(baselines.begin(), baselines.end());
    baselines.erase(std::unique(baselines.begin(), baselines.end()), baselines.end());
    const Lines lines = linesOf(baselines, grid.cellWidth);
    grid.rowPitch = lines.pitch;
    if (lines.pitch > 0) {
        // What stands between the lines is in another window.
        std::erase_if(grid.runs, [&](std::size_t run) {
            const int apart = std::abs(baselineOf(runs[run].metrics) % lines.pitch - lines.phase);
            return std::min(apart, lines.pitch - apart) > 1;
        });
    }
    return grid;
}

} // namespace

std::vector<FixedGrid> fixedGrids(const InkMap &ink, const std::vector<PageRun> &runs)
{
    std::map<int, Support> widths;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const double cap = runs[i].metrics.capHeight;
        const int from = std::max(narrowestCell, int(std::floor(cap * leastAspect)));
        const int to = std::min(
            {widestCell, int(std::ceil(cap * mostAspect)), runs[i].text.box.width() / leastCells});
        if (to < from)
            continue;
        const std::vector<int> columns = columnsOf(ink, runs[i].text);
        for (int cellWidth = from; cellWidth <= to; ++cellWidth) {
            const Fit fit = fitOf(columns, runs[i].text.box.left(), cellWidth);
            if (fit.inkAtBorders > mostInkAtBorders)
                continue;
            widths[cellWidth].runs[fit.border].push_back(i);
            widths[cellWidth].letters[fit.border] += runs[i].text.box.width() / cellWidth;
        }
    }
    std::vector<FixedGrid> grids;
    std::vector<bool> isUsed(runs.size(), false);
    while (const auto best = bestOf(widths)) {
        FixedGrid grid = gridOf(*best, widths[best->cellWidth], runs);
        for (const std::size_t run : grid.runs)
            isUsed[run] = true;
        grids.push_back(std::move(grid));
        for (auto &[cellWidth, support] : widths) {
            for (auto &[border, members] : support.runs) {
                std::erase_if(members, [&](std::size_t run) { return isUsed[run]; });
                int &letters = support.letters[border];
                letters = 0;
                for (const std::size_t run : members)
                    letters += runs[run].text.box.width() / cellWidth;
            }
        }
    }
    return grids;
}

} // namespace tovek
