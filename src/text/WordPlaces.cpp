// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "text/WordPlaces.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace tovek {

namespace {

auto keyOf(const Rect &box)
{
    return std::tuple(box.y, box.x, box.width, box.height);
}

} // namespace

WordPlaces::WordPlaces(const std::vector<TextRegion> &regions)
    : m_regions(regions)
    , m_byBox(regions.size())
{
    std::iota(m_byBox.begin(), m_byBox.end(), 0);
    std::sort(m_byBox.begin(), m_byBox.end(), [&](int a, int b) {
        return keyOf(regions[std::size_t(a)].boundingBox)
            < keyOf(regions[std::size_t(b)].boundingBox);
    });
}

std::set<int> WordPlaces::at(const Rect &box) const
{
    // Of thousands of words, nearly all stay where they are.
    const auto same =
        std::lower_bound(m_byBox.begin(), m_byBox.end(), keyOf(box), [this](int index, auto key) {
            return keyOf(m_regions[std::size_t(index)].boundingBox) < key;
        });
    if (same != m_byBox.end() && m_regions[std::size_t(*same)].boundingBox == box)
        return {*same};
    std::set<int> found;
    for (std::size_t i = 0; i < m_regions.size(); ++i) {
        const Rect &other = m_regions[i].boundingBox;
        if (box.contains({other.midX(), other.midY()}) || other.contains({box.midX(), box.midY()}))
            found.insert(int(i));
    }
    return found;
}

} // namespace tovek
