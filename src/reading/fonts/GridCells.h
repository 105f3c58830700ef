// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/fonts/FixedGrid.h"

namespace tovek {

/// One cell of a grid that holds ink.
struct InkCell
{
    std::size_t run = 0;
    int column = 0;
    QRect box;
    std::vector<std::uint8_t> ink; ///< row by row, the strongest pixel 255
};

/// Cuts the lines of a grid into its cells. All must outlive it.
class GridCells
{
public:
    GridCells(const InkMap &ink, const std::vector<PageRun> &runs, const FixedGrid &grid);

    /// False where the lines lie too close for a character's height, so that they are not known.
    bool isTall() const { return m_isTall; }
    /// The grid's own runs and what else stands on its lines close by, such as a dash alone: whole
    /// lines, and none that the picture's edge cuts.
    std::vector<std::size_t> runs() const;
    /// Those of a run that hold something; strokes that go on in the cells around are no text.
    std::vector<InkCell> of(std::size_t run) const;
    int columnAt(double x) const;
    /// The heights of letters on the lines, in a cell.
    const LetterMetrics &metrics() const { return m_metrics; }

private:
    void findLines();
    void findCut();
    void findColumns();
    int baselineOf(std::size_t run) const;
    bool isOwn(std::size_t run) const;
    /// The top of the line that a y lies in.
    int lineTop(int y) const;
    int lineTopOf(std::size_t run) const;
    InkCell cellAt(const QRect &box) const;
    bool isOverhang(const std::vector<std::uint8_t> &ink, int peak, int beside) const;
    bool isFrameStroke(const std::vector<std::uint8_t> &ink) const;

    const InkMap &m_ink;
    const std::vector<PageRun> &m_runs;
    const FixedGrid &m_grid;
    LetterMetrics m_metrics;
    bool m_isTall = false;
    int m_phase = 0; ///< of the baselines
    int m_cut = 0; ///< rows below a baseline that its cells end at
    int m_left = 0; ///< of the first column
};

} // namespace tovek
