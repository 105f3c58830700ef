// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/fonts/FixedGrid.h"

namespace tovek {

/// Reads text of a fixed pitch once more whose font is not known: cells of equal ink hold the same
/// character, and what an engine read in most of them is in all of them, however its readings of
/// single lines went astray. Lines whose cells do not prove the grid stay as they were read.
/// `readings` has one entry a run; those of the lines that were read by cells hold words then.
void readByCells(const InkMap &ink, const std::vector<PageRun> &runs,
                 const std::vector<FixedGrid> &grids,
                 std::vector<std::vector<ReadPiece>> &readings);

} // namespace tovek
