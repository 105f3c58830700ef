// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "text/TextRegion.h"

#include <set>
#include <vector>

namespace tovek {

/// Finds words by where they stand.
class WordPlaces
{
public:
    /// The words must outlive this.
    explicit WordPlaces(const std::vector<TextRegion> &regions);

    /// The indices of those that stand where a word with this box stood. It may have become
    /// several, or a part of one: then the middle of the smaller box lies in the larger one.
    std::set<int> at(const Rect &box) const;

private:
    const std::vector<TextRegion> &m_regions;
    std::vector<int> m_byBox;
};

} // namespace tovek
