// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/fonts/CellReader.h"

#include "reading/InkMap.h"

#include <algorithm>
#include <array>

namespace tovek {

namespace {

/// A cell that differs more from every character holds none of them.
constexpr double sameCharacter = 0.3;
/// A character of ASCII that is met so well is not looked for further.
constexpr double certainly = 0.03;
/// A character beyond ASCII must be met so well: there are many, and a little noise makes an
/// accent.
constexpr double certainlyOther = 0.05;
/// A row is still read when this part of its height is cut off.
constexpr int mostOutside = 4;

using CellKind = ReadCell::Kind;

int contrastBetween(QRgb a, QRgb b)
{
    return (std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b))
            + std::abs(qBlue(a) - qBlue(b)))
        / 3;
}

ReadCell named(const GlyphTable::Match &match)
{
    if (match.distance > sameCharacter)
        return {CellKind::foreign, match.character, match.distance};
    if (GlyphTable::isDrawn(match.character))
        return {CellKind::drawn, 0, 0};
    return {CellKind::letter, match.character, match.distance};
}

/// Rows from the baseline on that are all ink, from side to side: an underline.
std::uint64_t underline(const std::vector<std::uint8_t> &cell, const CellShape &shape)
{
    std::uint64_t rows = 0;
    for (int y = shape.ascent; y < shape.height() && y < 64; ++y) {
        const auto row = cell.begin() + std::ptrdiff_t(y) * shape.width;
        if (std::all_of(row, row + shape.width, [](std::uint8_t ink) { return ink > 128; }))
            rows |= std::uint64_t(1) << y;
    }
    return rows;
}

/// Straight strokes that run into the neighbouring cells, and nothing else: frames are drawn so,
/// by the font or by the terminal itself.
bool isFrame(const std::vector<std::uint8_t> &cell, const CellShape &shape)
{
    const auto at = [&](int x, int y) { return cell[std::size_t(y) * shape.width + x]; };
    std::vector<bool> isBarRow(std::size_t(shape.height()));
    std::vector<bool> isBarColumn(std::size_t(shape.width));
    const int middle = shape.width / 2;
    const int centre = shape.height() / 2;
    int bars = 0;
    for (int y = 0; y < shape.height(); ++y) {
        bool left = true;
        bool right = true;
        for (int x = 0; x < shape.width; ++x) {
            if (at(x, y) < 128)
                (x <= middle ? left : right) = false;
        }
        isBarRow[std::size_t(y)] = left || right;
        bars += left || right;
    }
    for (int x = 0; x < shape.width; ++x) {
        bool top = true;
        bool bottom = true;
        for (int y = 0; y < shape.height(); ++y) {
            if (at(x, y) < 128)
                (y <= centre ? top : bottom) = false;
        }
        isBarColumn[std::size_t(x)] = top || bottom;
        bars += top || bottom;
    }
    if (bars == 0)
        return false;
    for (int y = 0; y < shape.height(); ++y) {
        for (int x = 0; x < shape.width; ++x) {
            if (at(x, y) > 128 && !isBarRow[std::size_t(y)] && !isBarColumn[std::size_t(x)])
                return false;
        }
    }
    return true;
}

} // namespace

CellReader::CellReader(const QImage &image, GlyphTable &table, GlyphSource &source)
    : m_image(image)
    , m_table(table)
    , m_source(source)
{
}

std::optional<std::vector<ReadCell>> CellReader::row(int left, int baseline, int count)
{
    const CellShape &shape = m_table.shape();
    const int top = baseline - shape.ascent;
    std::uint64_t outside = 0; // the rows that the picture's edge cuts off
    int rowsOutside = 0;
    for (int y = 0; y < shape.height() && y < 64; ++y) {
        if (top + y < 0 || top + y >= m_image.height()) {
            outside |= std::uint64_t(1) << y;
            ++rowsOutside;
        }
    }
    if (left < 0 || left + count * shape.width > m_image.width()
        || rowsOutside * mostOutside > shape.height())
        return std::nullopt;
    std::vector<Ink> inks;
    for (int i = 0; i < count; ++i)
        inks.push_back(inkAt(left + i * shape.width, top, i > 0 ? inks.back().background : 0));
    std::vector<ReadCell> cells;
    for (std::size_t i = 0; i < inks.size(); ++i) {
        int neighbours = 0;
        for (const std::size_t other : {i - 1, i + 1}) {
            if (other < inks.size() && inks[other].background == inks[i].background)
                neighbours = std::max(neighbours, inks[other].peak);
        }
        const bool isBlank = inks[i].peak < faintestInk || isOverhang(inks[i], neighbours);
        cells.push_back(isBlank ? ReadCell{} : cellOf(inks[i], outside));
    }
    return cells;
}

/// The commonest colour is the background; where two are about as common, that of the cell before.
CellReader::Ink CellReader::inkAt(int left, int top, QRgb before) const
{
    const CellShape &shape = m_table.shape();
    struct Count
    {
        QRgb color;
        int count;
    };
    std::vector<Count> counts;
    const int from = std::max(0, top);
    const int to = std::min(m_image.height(), top + shape.height());
    for (int y = from; y < to; ++y) {
        const QRgb *row = reinterpret_cast<const QRgb *>(m_image.constScanLine(y)) + left;
        for (int x = 0; x < shape.width; ++x) {
            const auto found = std::find_if(counts.begin(), counts.end(),
                                            [&](const Count &one) { return one.color == row[x]; });
            if (found != counts.end())
                ++found->count;
            else
                counts.push_back({row[x], 1});
        }
    }
    const auto most = std::max_element(counts.begin(), counts.end(),
                                       [](auto &a, auto &b) { return a.count < b.count; });
    Ink ink;
    ink.background = most->color;
    for (const Count &one : counts) {
        if (one.color == before && one.count * 5 > most->count * 3)
            ink.background = before;
    }
    ink.contrast.assign(shape.size(), 0);
    for (int y = from; y < to; ++y) {
        const QRgb *row = reinterpret_cast<const QRgb *>(m_image.constScanLine(y)) + left;
        for (int x = 0; x < shape.width; ++x)
            ink.contrast[std::size_t(y - top) * shape.width + x] =
                std::uint8_t(contrastBetween(row[x], ink.background));
    }
    ink.peak = *std::max_element(ink.contrast.begin(), ink.contrast.end());
    return ink;
}

/// True when the ink is but the soft edge of a letter beside this cell.
bool CellReader::isOverhang(const Ink &cell, int neighbourPeak) const
{
    if (cell.peak * 5 > neighbourPeak * 3)
        return false;
    const int width = m_table.shape().width;
    for (std::size_t i = 0; i < cell.contrast.size(); ++i) {
        const int x = int(i) % width;
        if (cell.contrast[i] * 4 > cell.peak && x > 0 && x < width - 1)
            return false;
    }
    return true;
}

ReadCell CellReader::cellOf(const Ink &ink, std::uint64_t outside)
{
    std::vector<std::uint8_t> cell;
    cell.reserve(ink.contrast.size());
    for (const std::uint8_t contrast : ink.contrast)
        cell.push_back(std::uint8_t(contrast * 255 / ink.peak));
    const auto [known, isNew] = m_known.try_emplace(std::pair(outside, cell));
    if (isNew)
        known->second = compared(std::move(cell), outside);
    return known->second;
}

ReadCell CellReader::compared(std::vector<std::uint8_t> cell, std::uint64_t outside) const
{
    GlyphTable::Match match = m_table.nearest(cell, outside);
    if (match.distance <= certainly)
        return named(match);
    const CellShape &shape = m_table.shape();
    if (isFrame(cell, shape))
        return {CellKind::drawn, 0, 0};
    if (const std::uint64_t hidden = underline(cell, shape)) {
        for (int y = 0; y < shape.height() && y < 64; ++y) {
            if (hidden >> y & 1)
                std::fill_n(cell.begin() + std::ptrdiff_t(y) * shape.width, shape.width, 0);
        }
        if (*std::max_element(cell.begin(), cell.end()) < 64)
            return {CellKind::drawn, 0, 0};
        const GlyphTable::Match above = m_table.nearest(cell, hidden | outside);
        if (above.distance < match.distance)
            match = above;
    }
    if (match.distance > certainly) {
        m_table.extend(m_source);
        const GlyphTable::Match other = m_table.nearestOther(cell, outside);
        if (other.distance <= certainlyOther && other.distance * 2 < match.distance)
            match = other;
    }
    return named(match);
}

} // namespace tovek
