// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/TextRuns.h"

namespace tovek {

/// Where a picture is strewn with specks: grain, dust, stippling, a starry sky. Each of them alone
/// could be a mark, and the engine would read thousands, into nothing. Dots of letters are fewer
/// than letters, and dots that lead the eye stand in rows.
class SpeckField
{
public:
    SpeckField(const std::vector<InkPatch> &patches, QSize picture);

    /// True for a run among specks that has no line of letters in it.
    bool covers(const TextRun &run) const;

private:
    struct Cell
    {
        int specks = 0;
        int letters = 0; ///< anything as high as one
    };
    bool isStrewnAt(QPoint at) const;

    int m_columns = 0;
    int m_rows = 0;
    std::vector<Cell> m_cells; ///< row by row
};

} // namespace tovek
