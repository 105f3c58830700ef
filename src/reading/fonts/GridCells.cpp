// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/fonts/GridCells.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace tovek {

namespace {

/// What stands on the grid's lines belongs to it when it is no further from it than so many cells.
constexpr int nearestCells = 4;
/// A line is at least so high, in cap heights: below its baseline it has room for descenders.
constexpr double leastPitch = 1.25;
/// Of 255: a stroke through the whole cell is as strong everywhere.
constexpr int strokeOfFrame = 64;

int wrapped(int value, int divisor)
{
    return (value % divisor + divisor) % divisor;
}

int strongest(const std::vector<std::uint8_t> &ink)
{
    return *std::max_element(ink.begin(), ink.end());
}

} // namespace

GridCells::GridCells(const InkMap &ink, const std::vector<PageRun> &runs, const FixedGrid &grid)
    : m_ink(ink)
    , m_runs(runs)
    , m_grid(grid)
{
    findLines();
    if (!m_isTall)
        return;
    findCut();
    findColumns();
    m_metrics.baseline = m_grid.rowPitch - m_cut;
}

int GridCells::baselineOf(std::size_t run) const
{
    return int(std::lround(m_runs[run].metrics.baseline));
}

bool GridCells::isOwn(std::size_t run) const
{
    return std::binary_search(m_grid.runs.begin(), m_grid.runs.end(), run);
}

void GridCells::findLines()
{
    if (m_grid.rowPitch == 0)
        return;
    std::map<int, int> phases;
    std::vector<std::size_t> byCap = m_grid.runs;
    for (const std::size_t run : m_grid.runs)
        phases[wrapped(baselineOf(run), m_grid.rowPitch)] += m_runs[run].text.box.width();
    m_phase = std::max_element(phases.begin(), phases.end(), [](const auto &a, const auto &b) {
                  return a.second < b.second;
              })->first;
    const auto middle = byCap.begin() + std::ptrdiff_t(byCap.size() / 2);
    std::nth_element(byCap.begin(), middle, byCap.end(), [this](std::size_t a, std::size_t b) {
        return m_runs[a].metrics.capHeight < m_runs[b].metrics.capHeight;
    });
    m_metrics = m_runs[*middle].metrics;
    m_isTall = m_grid.rowPitch >= m_metrics.capHeight * leastPitch;
}

/// Between the descenders and the capitals of the next line there is least ink.
void GridCells::findCut()
{
    std::vector<long> rows(std::size_t(m_grid.rowPitch), 0);
    for (const std::size_t run : m_grid.runs) {
        const QRect &box = m_runs[run].text.box;
        for (int y = box.top(); y <= box.bottom(); ++y) {
            long &sum = rows[std::size_t(wrapped(y - m_phase, m_grid.rowPitch))];
            for (int x = box.left(); x <= box.right(); ++x)
                sum += m_ink.at(x, y);
        }
    }
    const int free = std::max(1, m_grid.rowPitch - int(std::lround(m_metrics.capHeight)));
    const int middle = free / 2;
    m_cut = middle;
    for (int y = 0; y < free; ++y) {
        const long more = rows[std::size_t(y)] - rows[std::size_t(m_cut)];
        if (more < 0 || (more == 0 && std::abs(y - middle) < std::abs(m_cut - middle)))
            m_cut = y;
    }
}

void GridCells::findColumns()
{
    std::vector<long> columns(std::size_t(m_grid.cellWidth), 0);
    for (const std::size_t run : m_grid.runs) {
        const QRect &box = m_runs[run].text.box;
        for (int y = box.top(); y <= box.bottom(); ++y) {
            for (int x = box.left(); x <= box.right(); ++x)
                columns[std::size_t(x % m_grid.cellWidth)] += m_ink.at(x, y);
        }
    }
    m_left = int(std::min_element(columns.begin(), columns.end()) - columns.begin());
}

int GridCells::lineTop(int y) const
{
    return y - wrapped(y - m_phase - m_cut, m_grid.rowPitch);
}

int GridCells::lineTopOf(std::size_t run) const
{
    const int middle = baselineOf(run) - int(m_metrics.capHeight / 2);
    return lineTop(isOwn(run) ? middle : m_runs[run].text.box.center().y());
}

std::vector<std::size_t> GridCells::runs() const
{
    QRect area;
    for (const std::size_t run : m_grid.runs)
        area |= m_runs[run].text.box;
    const int beside = nearestCells * m_grid.cellWidth;
    area.adjust(-beside, -m_grid.rowPitch, beside, m_grid.rowPitch);
    std::vector<std::size_t> found;
    for (std::size_t run = 0; run < m_runs.size(); ++run) {
        const QRect &box = m_runs[run].text.box;
        const int top = lineTopOf(run);
        const int bottom = top + m_grid.rowPitch;
        const bool isInLine = box.top() >= top - 1 && box.bottom() <= bottom;
        if (area.contains(box) && (isOwn(run) || isInLine) && top >= 0
            && bottom <= m_ink.size.height())
            found.push_back(run);
    }
    return found;
}

int GridCells::columnAt(double x) const
{
    return int(std::floor((x - m_left) / m_grid.cellWidth));
}

std::vector<InkCell> GridCells::of(std::size_t run) const
{
    const QRect &box = m_runs[run].text.box;
    const int top = lineTopOf(run);
    std::vector<InkCell> line;
    std::vector<int> peaks{0}; // with one before the first and one behind the last cell
    for (int column = columnAt(box.left()); column <= columnAt(box.right()); ++column) {
        const QPoint corner(m_left + column * m_grid.cellWidth, top);
        line.push_back(cellAt({corner, QSize(m_grid.cellWidth, m_grid.rowPitch)}));
        line.back().run = run;
        line.back().column = column;
        peaks.push_back(strongest(line.back().ink));
    }
    peaks.push_back(0);
    std::vector<InkCell> cells;
    for (std::size_t i = 0; i < line.size(); ++i) {
        InkCell &cell = line[i];
        const int peak = peaks[i + 1];
        if (peak < faintestInk || isOverhang(cell.ink, peak, std::max(peaks[i], peaks[i + 2]))
            || isFrameStroke(cell.ink))
            continue;
        for (std::uint8_t &ink : cell.ink)
            ink = std::uint8_t(ink * 255 / peak);
        cells.push_back(std::move(cell));
    }
    return cells;
}

InkCell GridCells::cellAt(const QRect &box) const
{
    InkCell cell;
    cell.box = box;
    cell.ink.reserve(std::size_t(box.width()) * box.height());
    for (int y = box.top(); y <= box.bottom(); ++y) {
        for (int x = box.left(); x <= box.right(); ++x)
            cell.ink.push_back(x >= 0 && x < m_ink.size.width() ? m_ink.at(x, y) : 0);
    }
    return cell;
}

/// True when the ink is but the soft edge of a letter beside this cell.
bool GridCells::isOverhang(const std::vector<std::uint8_t> &ink, int peak, int beside) const
{
    if (peak * 5 > beside * 3)
        return false;
    for (std::size_t i = 0; i < ink.size(); ++i) {
        const int x = int(i) % m_grid.cellWidth;
        if (ink[i] * 4 > peak && x > 0 && x < m_grid.cellWidth - 1)
            return false;
    }
    return true;
}

bool GridCells::isFrameStroke(const std::vector<std::uint8_t> &ink) const
{
    for (int x = 0; x < m_grid.cellWidth; ++x) {
        int y = 0;
        while (y < m_grid.rowPitch && ink[std::size_t(y) * m_grid.cellWidth + x] > strokeOfFrame)
            ++y;
        if (y == m_grid.rowPitch)
            return true;
    }
    return false;
}

} // namespace tovek
