// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/KnownGaps.h"

#include "reading/TextRuns.h"

#include <algorithm>
#include <cmath>

namespace tovek {

namespace {

/// Gaps of both kinds that must have been seen, and of one between the same characters.
constexpr int leastGaps = 20;
constexpr int leastBetween = 3;
/// Of the gaps of a width, the share that an engine may have misread.
constexpr double misread = 0.05;

int quarters(double capHeight)
{
    return int(std::lround(capHeight * 4));
}

bool isRare(int count, int others)
{
    return count <= (count + others) * misread;
}

} // namespace

void KnownGaps::Counts::add(const Counts &other)
{
    letters += other.letters;
    blanks += other.blanks;
}

void KnownGaps::learn(double capHeight, const Gap &gap, bool isBlank)
{
    const Counts one{isBlank ? 0 : 1, isBlank ? 1 : 0};
    Width &width = m_widths[quarters(capHeight)][gap.width];
    width.all.add(one);
    width.between[{gap.before, gap.after}].add(one);
}

template <typename Use>
void KnownGaps::forSize(double capHeight, Use use) const
{
    for (auto it = m_widths.lower_bound(quarters(capHeight * (1 - sameFont)));
         it != m_widths.end() && it->first <= quarters(capHeight * (1 + sameFont)); ++it)
        use(it->second);
}

std::optional<KnownGaps::Limits> KnownGaps::limits(double capHeight) const
{
    std::map<int, Counts> widths;
    Counts all;
    forSize(capHeight, [&](const Widths &ofSize) {
        for (const auto &[width, gaps] : ofSize) {
            widths[width].add(gaps.all);
            all.add(gaps.all);
        }
    });
    if (std::min(all.letters, all.blanks) < leastGaps)
        return std::nullopt;
    // Each width by its own readings: a blank that was read into a word here and there says
    // nothing about all the other gaps that are as narrow.
    std::optional<int> widestLetter;
    std::optional<int> narrowestBlank;
    Counts narrower;
    for (const auto &[width, gaps] : widths) {
        const Counts wider{all.letters - narrower.letters, all.blanks - narrower.blanks};
        narrower.add(gaps);
        if (isRare(gaps.blanks, gaps.letters) && isRare(narrower.blanks, narrower.letters))
            widestLetter = width;
        if (!narrowestBlank && isRare(gaps.letters, gaps.blanks)
            && isRare(wider.letters, wider.blanks))
            narrowestBlank = width;
    }
    if (!widestLetter || !narrowestBlank || *widestLetter >= *narrowestBlank)
        return std::nullopt;
    return Limits{*widestLetter, *narrowestBlank};
}

std::optional<bool> KnownGaps::isBlank(double capHeight, const Gap &gap) const
{
    Counts all;
    forSize(capHeight, [&](const Widths &ofSize) {
        const auto width = ofSize.find(gap.width);
        if (width == ofSize.end())
            return;
        const auto between = width->second.between.find({gap.before, gap.after});
        if (between != width->second.between.end())
            all.add(between->second);
    });
    if (std::max(all.letters, all.blanks) < leastBetween || std::min(all.letters, all.blanks) > 0)
        return std::nullopt;
    return all.blanks > 0;
}

} // namespace tovek
