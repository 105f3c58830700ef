// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Geometry.h"

#include <set>
#include <vector>

namespace tovek {

/// The indices of the rectangles in the order in which their words are read: lines from top to
/// bottom, in each line from left to right. Rectangles whose centers differ by no more than half
/// the mean height from the first of their line stand on that line.
std::vector<int> readingOrder(const std::vector<Rect> &rects);

/// The indices from `from` to `to` in the given order, whichever of the two comes first. Empty
/// when one of them is missing.
std::set<int> rangeBetween(int from, int to, const std::vector<int> &order);

} // namespace tovek
