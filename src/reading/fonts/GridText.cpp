// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/fonts/GridText.h"

#include "reading/fonts/Alphabets.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace tovek {

namespace {

using CellKind = ReadCell::Kind;

/// Text that stands on a grid's lines belongs to it when it is no further from it than so many
/// cells or lines.
constexpr int nearCells = 12;
constexpr int nearRows = 3;
/// Blank cells that end a stretch: text of another program may begin behind them.
constexpr std::size_t widestCellBlank = 1;
/// The mean distance and the share of foreign cells in a stretch that is read.
constexpr double mostDistance = 0.12;
constexpr double mostForeign = 0.25;
/// A few cells alone may look like a character by chance.
constexpr std::size_t fewCells = 2;
constexpr double mostDistanceOfFew = 0.1;
/// The share of a run's ink that must have been read: the rest is specks and soft edges.
constexpr double mostOfRun = 0.9;

/// A cut character is at least so small a part of the letters' height: what is lower is a speck.
constexpr int leastOfCut = 3;
/// What is no character and no wider stands by itself: a cursor, a symbol.
constexpr std::size_t widestCellSymbol = 2;

bool isWritten(const ReadCell &cell)
{
    return cell.kind == CellKind::letter || cell.kind == CellKind::foreign;
}

int modulo(int value, int divisor)
{
    return (value % divisor + divisor) % divisor;
}

int commonest(const std::vector<int> &values)
{
    std::map<int, int> counts;
    for (const int value : values)
        ++counts[value];
    return std::max_element(counts.begin(), counts.end(),
                            [](const auto &a, const auto &b) { return a.second < b.second; })
        ->first;
}

/// What the grid's lines take, with what stands on its lines close by.
QRect areaOf(const std::vector<PageRun> &runs, const std::vector<int> &baselines,
             const FixedGrid &grid, int phase)
{
    QRect area;
    for (const std::size_t run : grid.runs)
        area |= runs[run].text.box;
    if (grid.rowPitch == 0)
        return area;
    for (bool hasGrown = true; hasGrown;) {
        hasGrown = false;
        const QRect near = area.adjusted(-nearCells * grid.cellWidth, -nearRows * grid.rowPitch,
                                         nearCells * grid.cellWidth, nearRows * grid.rowPitch);
        for (std::size_t i = 0; i < runs.size(); ++i) {
            const int apart = modulo(baselines[i] - phase + 1, grid.rowPitch);
            // Lines that could not be told apart have no baseline of their own.
            const bool isOnLines = apart <= 2 || runs[i].text.box.height() * 2 > grid.rowPitch * 3;
            if (isOnLines && near.intersects(runs[i].text.box)
                && !area.contains(runs[i].text.box)) {
                area |= runs[i].text.box;
                hasGrown = true;
            }
        }
    }
    return area;
}

} // namespace

CellRows cellRows(const std::vector<PageRun> &runs, const FixedGrid &grid, const FontFit &fit,
                  const CellShape &shape, QSize picture)
{
    std::vector<int> baselines;
    for (const PageRun &run : runs)
        baselines.push_back(int(std::lround(run.metrics.baseline)) + fit.belowBaseline);
    CellRows place;
    std::vector<int> own;
    for (const std::size_t run : grid.runs)
        own.push_back(grid.rowPitch > 0 ? baselines[run] % grid.rowPitch : baselines[run]);
    const int phase = commonest(own);
    const QRect area = areaOf(runs, baselines, grid, phase);
    if (grid.rowPitch > 0) {
        const int first = area.top() + modulo(phase - area.top(), grid.rowPitch);
        for (int y = first; y - shape.ascent <= area.bottom(); y += grid.rowPitch)
            place.baselines.push_back(y);
    } else {
        std::sort(own.begin(), own.end());
        own.erase(std::unique(own.begin(), own.end()), own.end());
        place.baselines = own;
    }
    const int width = shape.width;
    place.left = area.left() - modulo(area.left() - fit.left, width);
    if (place.left < 0)
        place.left += width;
    const int right = std::min(picture.width(), area.right() + 1 + width - 1);
    place.columns = std::max(0, (right - place.left) / width);
    return place;
}

int GridText::letters() const
{
    int count = 0;
    for (const GridRow &row : rows)
        count += int(std::count_if(row.cells.begin(), row.cells.end(), [](const ReadCell &cell) {
            return cell.kind == CellKind::letter;
        }));
    return count;
}

GridText gridText(CellReader &reader, CellRows place, const CellShape &shape)
{
    GridText text{std::move(place), shape, {}};
    for (const int baseline : text.place.baselines) {
        if (auto cells = reader.row(text.place.left, baseline, text.place.columns))
            text.rows.push_back({baseline, std::move(*cells)});
    }
    return text;
}

std::vector<RunDistance> runDistances(const GridText &text, const std::vector<PageRun> &runs,
                                      const FixedGrid &grid)
{
    std::vector<RunDistance> distances(grid.runs.size());
    for (std::size_t row = 0; row < text.rows.size(); ++row) {
        const std::vector<ReadCell> &cells = text.rows[row].cells;
        const QRect line = boxOf(text, row, 0, cells.size());
        for (std::size_t at = 0; at < grid.runs.size(); ++at) {
            const QRect &box = runs[grid.runs[at]].text.box;
            if (!box.intersects(line))
                continue;
            for (std::size_t i = 0; i < cells.size(); ++i) {
                if (!isWritten(cells[i]) || !box.contains(boxOf(text, row, i, i + 1).center()))
                    continue;
                distances[at].sum += cells[i].kind == CellKind::letter ? cells[i].distance : 1;
                ++distances[at].letters;
            }
        }
    }
    return distances;
}

std::vector<GridStretch> readableStretches(const GridText &text, const QRect &ownArea)
{
    std::vector<GridStretch> stretches;
    std::vector<GridStretch> few;
    for (std::size_t row = 0; row < text.rows.size(); ++row) {
        const std::vector<ReadCell> &cells = text.rows[row].cells;
        for (std::size_t from = 0; from < cells.size(); ++from) {
            if (!isWritten(cells[from]))
                continue;
            std::size_t to = from;
            std::size_t letters = 0;
            std::size_t foreign = 0;
            double distance = 0;
            for (std::size_t i = from; i < cells.size() && i <= to + widestCellBlank; ++i) {
                if (!isWritten(cells[i]))
                    continue;
                to = i + 1;
                letters += cells[i].kind == CellKind::letter;
                foreign += cells[i].kind == CellKind::foreign;
                distance += cells[i].kind == CellKind::letter ? cells[i].distance : 0;
            }
            const double mean = letters > 0 ? distance / double(letters) : 1;
            const bool isFew = letters <= fewCells;
            const bool isRead = mean <= (isFew ? mostDistanceOfFew : mostDistance)
                && double(foreign) <= mostForeign * double(letters + foreign);
            if (isRead)
                (isFew ? few : stretches).push_back({row, from, to});
            from = to;
        }
    }
    const std::vector<GridStretch> longer = stretches;
    for (const GridStretch &one : few) {
        const bool isBesideText =
            std::any_of(longer.begin(), longer.end(),
                        [&](const GridStretch &other) { return other.row == one.row; });
        if (isBesideText || ownArea.contains(boxOf(text, one.row, one.from, one.to).center()))
            stretches.push_back(one);
    }
    std::sort(stretches.begin(), stretches.end(), [](const auto &a, const auto &b) {
        return std::pair(a.row, a.from) < std::pair(b.row, b.from);
    });
    return stretches;
}

QRect boxOf(const GridText &text, std::size_t row, std::size_t from, std::size_t to)
{
    const int width = text.shape.width;
    return {text.place.left + int(from) * width, text.rows[row].baseline - text.shape.ascent,
            int(to - from) * width, text.shape.height()};
}

std::vector<CutRow> cutRows(const GridText &text, const std::vector<PageRun> &runs)
{
    std::vector<CutRow> cuts;
    for (std::size_t row = 0; row < text.rows.size(); ++row) {
        const QRect line = boxOf(text, row, 0, text.rows[row].cells.size());
        QRect left;
        QRect right;
        for (const PageRun &run : runs) {
            if (!run.text.box.intersects(line))
                continue;
            for (const InkPatch &patch : run.text.patches) {
                const QPoint center = patch.box.center();
                if (center.y() < line.top() || center.y() > line.bottom())
                    continue;
                if (center.x() < line.left())
                    left |= patch.box;
                else if (center.x() > line.right())
                    right |= patch.box;
            }
        }
        const auto isHigh = [&](const QRect &ink) {
            return ink.height() * leastOfCut >= text.shape.ascent;
        };
        cuts.push_back({isHigh(left), isHigh(right)});
    }
    return cuts;
}

GridWords wordsIn(const GridText &text, const std::vector<GridStretch> &stretches,
                  const std::vector<CutRow> &cuts)
{
    GridWords words;
    for (const GridStretch &stretch : stretches) {
        const std::vector<ReadCell> &cells = text.rows[stretch.row].cells;
        std::vector<ReadWord> line;
        for (std::size_t from = stretch.from; from < stretch.to; ++from) {
            std::u32string characters;
            double distance = 0;
            std::size_t to = from;
            bool isWhole = true;
            for (; to < stretch.to && isWritten(cells[to]); ++to) {
                characters += cells[to].character;
                distance += cells[to].distance;
                isWhole = isWhole && cells[to].kind == CellKind::letter;
            }
            if (to == from)
                continue;
            const QRect box = boxOf(text, stretch.row, from, to);
            const CutRow cut = cuts[stretch.row];
            const bool isCut = (from == 0 && cut.left) || (to == cells.size() && cut.right);
            settleAlphabet(characters);
            const bool isOrnament = !isWhole && characters.size() > widestCellSymbol;
            if (isCut || isOrnament)
                words.left.push_back(box);
            else if (isWhole)
                line.push_back({QString::fromStdU32String(characters), box,
                                100 * (1 - distance / double(characters.size()))});
            from = to;
        }
        if (!line.empty())
            words.lines.push_back(std::move(line));
    }
    return words;
}

std::vector<bool> coveredRuns(const GridText &text, const GridWords &words,
                              const std::vector<PageRun> &runs)
{
    std::vector<QRect> boxes;
    for (const std::vector<ReadWord> &line : words.lines) {
        for (const ReadWord &word : line)
            boxes.push_back(word.box);
    }
    for (std::size_t row = 0; row < text.rows.size(); ++row) {
        for (std::size_t i = 0; i < text.rows[row].cells.size(); ++i) {
            if (text.rows[row].cells[i].kind == CellKind::drawn)
                boxes.push_back(boxOf(text, row, i, i + 1));
        }
    }
    const auto isOver = [](const std::vector<QRect> &those, QPoint point) {
        return std::any_of(those.begin(), those.end(),
                           [&](const QRect &box) { return box.contains(point); });
    };
    std::vector<bool> isCovered;
    for (const PageRun &run : runs) {
        double covered = 0;
        double all = 0;
        bool isLeft = false;
        for (const InkPatch &patch : run.text.patches) {
            all += patch.area;
            covered += isOver(boxes, patch.box.center()) ? patch.area : 0;
            isLeft = isLeft || isOver(words.left, patch.box.center());
        }
        isCovered.push_back(!isLeft && covered > 0 && covered >= mostOfRun * all);
    }
    return isCovered;
}

} // namespace tovek
