// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/fonts/CellReader.h"
#include "reading/fonts/FontFit.h"

namespace tovek {

/// Where a grid's cells lie in the picture.
struct CellRows
{
    int left = 0; ///< of the first column
    int columns = 0;
    std::vector<int> baselines; ///< rising
};

/// The cells of the lines of a grid, between its lines, and those of what stands on its lines
/// close by: lines too short to tell their pitch, and lines that were not found at all.
CellRows cellRows(const std::vector<PageRun> &runs, const FixedGrid &grid, const FontFit &fit,
                  const CellShape &shape, QSize picture);

/// One row as it was read.
struct GridRow
{
    int baseline = 0;
    std::vector<ReadCell> cells;
};

/// What came of reading a grid in a font.
struct GridText
{
    CellRows place;
    CellShape shape;
    std::vector<GridRow> rows;

    /// The letters that were read.
    int letters() const;
};

GridText gridText(CellReader &reader, CellRows place, const CellShape &shape);

/// How far the cells of one run are from the font's characters.
struct RunDistance
{
    double sum = 0; ///< 1 for a cell that holds none
    int letters = 0;

    double mean() const { return letters > 0 ? sum / letters : 1; }
};
/// One entry for each of the grid's own runs.
std::vector<RunDistance> runDistances(const GridText &text, const std::vector<PageRun> &runs,
                                      const FixedGrid &grid);

/// Stretches of a row whose cells are the font's characters, without a gap of more than a blank.
/// Others are left out: there is something else on the grid. A few cells by themselves are read
/// only beside text or in the grid's own area: a frame's corner looks like a character.
struct GridStretch
{
    std::size_t row = 0;
    std::size_t from = 0, to = 0; ///< cells
};
std::vector<GridStretch> readableStretches(const GridText &text, const QRect &ownArea);

/// The box of cells from `from` to before `to`.
QRect boxOf(const GridText &text, std::size_t row, std::size_t from, std::size_t to);

/// Whether characters stand beside a row's first and last cell: cut by the picture's edge, they
/// have no cell of their own.
struct CutRow
{
    bool left = false;
    bool right = false;
};
std::vector<CutRow> cutRows(const GridText &text, const std::vector<PageRun> &runs);

/// The words of a grid that are read, by lines, and what must be read in another way.
struct GridWords
{
    std::vector<std::vector<ReadWord>> lines;
    std::vector<QRect> left; ///< words with a cell that the font does not have, or with a cut one
};
/// `cuts`: one entry a row.
GridWords wordsIn(const GridText &text, const std::vector<GridStretch> &stretches,
                  const std::vector<CutRow> &cuts);

/// True for the runs whose ink lies in the words and in what is drawn on the grid.
std::vector<bool> coveredRuns(const GridText &text, const GridWords &words,
                              const std::vector<PageRun> &runs);

} // namespace tovek
