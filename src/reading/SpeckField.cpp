// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/SpeckField.h"

#include <algorithm>
#include <map>

namespace tovek {

namespace {

/// Equal dots on one line closer than this are a row of them.
constexpr int widestStep = 24;
/// What is around is looked for in squares of nine cells.
constexpr int cellSide = 64;
/// Text of 9 px has up to eighty dots and commas there, and three letters to each of them.
constexpr int leastSpecks = 40;
constexpr double leastPerLetter = 1.2;
/// So many letters on one baseline are a line, whatever lies around.
constexpr int leastOnLine = 4;

/// The patches that are no dash, as low as dots, and have no equal one beside them.
std::vector<InkPatch> specksAmong(std::vector<InkPatch> patches)
{
    std::erase_if(patches, [](const InkPatch &p) { return isLetterHigh(p) || isDashWide(p); });
    std::sort(patches.begin(), patches.end(), [](const InkPatch &a, const InkPatch &b) {
        return std::pair(a.box.bottom(), a.box.left()) < std::pair(b.box.bottom(), b.box.left());
    });
    const auto isRow = [](const InkPatch &a, const InkPatch &b) {
        return a.box.bottom() == b.box.bottom() && a.box.size() == b.box.size()
            && b.box.left() - a.box.right() <= widestStep;
    };
    std::vector<InkPatch> specks;
    for (std::size_t i = 0; i < patches.size(); ++i) {
        const bool hasEqual = (i > 0 && isRow(patches[i - 1], patches[i]))
            || (i + 1 < patches.size() && isRow(patches[i], patches[i + 1]));
        if (!hasEqual)
            specks.push_back(patches[i]);
    }
    return specks;
}

} // namespace

SpeckField::SpeckField(const std::vector<InkPatch> &patches, QSize picture)
{
    const std::vector<InkPatch> specks = specksAmong(patches);
    if (int(specks.size()) < leastSpecks)
        return;
    m_columns = picture.width() / cellSide + 1;
    m_rows = picture.height() / cellSide + 1;
    m_cells.resize(std::size_t(m_columns) * m_rows);
    const auto cellOf = [this](const InkPatch &patch) -> Cell & {
        const QPoint at = patch.box.center();
        return m_cells[std::size_t(at.y() / cellSide) * m_columns + at.x() / cellSide];
    };
    for (const InkPatch &speck : specks)
        ++cellOf(speck).specks;
    for (const InkPatch &patch : patches)
        cellOf(patch).letters += isLetterHigh(patch);
}

bool SpeckField::covers(const TextRun &run) const
{
    if (m_cells.empty() || !isStrewnAt(run.box.center()))
        return false;
    std::map<int, int> bottoms;
    for (const InkPatch &patch : run.patches) {
        if (isLetterHigh(patch))
            ++bottoms[patch.box.bottom()];
    }
    int onLine = 0;
    for (const auto &[bottom, count] : bottoms) {
        const auto next = bottoms.find(bottom + 1);
        onLine = std::max(onLine, count + (next == bottoms.end() ? 0 : next->second));
    }
    return onLine < leastOnLine || onLine * 2 < int(run.patches.size());
}

bool SpeckField::isStrewnAt(QPoint at) const
{
    Cell sum;
    const int column = at.x() / cellSide;
    const int row = at.y() / cellSide;
    for (int y = std::max(0, row - 1); y <= std::min(m_rows - 1, row + 1); ++y) {
        for (int x = std::max(0, column - 1); x <= std::min(m_columns - 1, column + 1); ++x) {
            const Cell &one = m_cells[std::size_t(y) * m_columns + x];
            sum.specks += one.specks;
            sum.letters += one.letters;
        }
    }
    return sum.specks >= leastSpecks && sum.specks > leastPerLetter * sum.letters;
}

} // namespace tovek
