// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/PageReading.h"

namespace tovek {

/// Where characters of one width stand under each other, as in a terminal or a source text.
struct FixedGrid
{
    int cellWidth = 0;
    int rowPitch = 0; ///< from one baseline to the next; 0 when too few lines tell it
    std::vector<std::size_t> runs; ///< whose letters stand in its cells, as indexes

    bool operator==(const FixedGrid &) const = default;
};

/// The grids in a picture, the one with most text first. Lines of one grid may lie anywhere: two
/// terminals in the same columns whose lines are level are one.
std::vector<FixedGrid> fixedGrids(const InkMap &ink, const std::vector<PageRun> &runs);

} // namespace tovek
