// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/fonts/GlyphTable.h"

#include <algorithm>
#include <array>

namespace tovek {

namespace {

struct CharacterRange
{
    char32_t from, to;
};

constexpr CharacterRange ascii{0x21, 0x7e};
/// Lines, corners and blocks.
constexpr CharacterRange frames{0x2500, 0x259f};
/// What terminals and source texts show beside ASCII; among the shapes no upright bars, which
/// cursors are drawn like.
constexpr std::array<CharacterRange, 17> others{{{0xa1, 0x17f},
                                                 {0x384, 0x3ce},
                                                 {0x401, 0x45f},
                                                 {0x2010, 0x2027},
                                                 {0x2030, 0x2030},
                                                 {0x2039, 0x203a},
                                                 {0x20ac, 0x20ac},
                                                 {0x2190, 0x2195},
                                                 {0x21d0, 0x21d4},
                                                 {0x221e, 0x221e},
                                                 {0x2248, 0x2248},
                                                 {0x2260, 0x2265},
                                                 {0x25a0, 0x25ad},
                                                 {0x25b0, 0x25ff},
                                                 {0x2605, 0x2606},
                                                 {0x2713, 0x2718},
                                                 {0x279c, 0x279c}}};

} // namespace

std::vector<NamedGlyph> lettersOf(GlyphSource &source, const FontChoice &choice)
{
    std::vector<NamedGlyph> letters;
    for (char32_t character = ascii.from; character <= ascii.to; ++character) {
        const auto drawn = source.glyph(choice.font, choice.style, FontFace::own, character);
        if (drawn && !drawn->isEmpty())
            letters.push_back({character, trimmed(*drawn)});
    }
    return letters;
}

GlyphTable::GlyphTable(GlyphSource &source, const FontChoice &choice, int cellWidth, int rowPitch)
    : m_choice(choice)
{
    m_shape.width = cellWidth;
    for (char32_t character = ascii.from; character <= ascii.to; ++character) {
        const auto drawn = source.glyph(choice.font, choice.style, FontFace::own, character);
        if (!drawn || drawn->isEmpty())
            continue;
        m_shape.ascent = std::max(m_shape.ascent, -drawn->box.top());
        m_shape.descent = std::max(m_shape.descent, drawn->box.bottom() + 1);
    }
    if (const int excess = m_shape.height() - rowPitch; rowPitch > 0 && excess > 0) {
        m_shape.ascent -= (excess + 1) / 2;
        m_shape.descent -= excess / 2;
    }
    add(source, FontFace::own, ascii.from, ascii.to);
    add(source, FontFace::bold, ascii.from, ascii.to);
    add(source, FontFace::own, frames.from, frames.to);
    m_usual = m_characters.size();
}

bool GlyphTable::isDrawn(char32_t character)
{
    return character >= frames.from && character <= frames.to;
}

void GlyphTable::extend(GlyphSource &source)
{
    if (m_characters.size() > m_usual)
        return;
    add(source, FontFace::italic, ascii.from, ascii.to);
    for (const CharacterRange &range : others) {
        add(source, FontFace::own, range.from, range.to);
        add(source, FontFace::bold, range.from, range.to);
    }
}

void GlyphTable::add(GlyphSource &source, FontFace face, char32_t from, char32_t to)
{
    for (char32_t character = from; character <= to; ++character) {
        const auto drawn = source.glyph(m_choice.font, m_choice.style, face, character);
        if (drawn && !drawn->isEmpty())
            addCell(character, *drawn);
    }
}

void GlyphTable::addCell(char32_t character, const Glyph &glyph)
{
    const QRect window(0, -m_shape.ascent, m_shape.width, m_shape.height());
    const QRect seen = glyph.box & window;
    int peak = 0;
    for (int y = seen.top(); y <= seen.bottom(); ++y) {
        for (int x = seen.left(); x <= seen.right(); ++x)
            peak = std::max(peak, int(glyph.at(x, y)));
    }
    if (peak == 0)
        return;
    const std::size_t at = m_cells.size();
    m_cells.resize(at + m_shape.size(), 0);
    for (int y = seen.top(); y <= seen.bottom(); ++y) {
        for (int x = seen.left(); x <= seen.right(); ++x)
            m_cells[at + std::size_t(y + m_shape.ascent) * std::size_t(m_shape.width)
                    + std::size_t(x)] = std::uint8_t(glyph.at(x, y) * 255 / peak);
    }
    m_characters.push_back(character);
}

GlyphTable::Match GlyphTable::nearest(const std::vector<std::uint8_t> &cell,
                                      std::uint64_t hidden) const
{
    return nearestIn(0, m_usual, cell, hidden);
}

GlyphTable::Match GlyphTable::nearestOther(const std::vector<std::uint8_t> &cell,
                                           std::uint64_t hidden) const
{
    return nearestIn(m_usual, m_characters.size(), cell, hidden);
}

GlyphTable::Match GlyphTable::nearestIn(std::size_t from, std::size_t to,
                                        const std::vector<std::uint8_t> &cell,
                                        std::uint64_t hidden) const
{
    const std::size_t width = std::size_t(m_shape.width);
    Match best;
    for (std::size_t i = from; i < to; ++i) {
        const std::uint8_t *glyph = m_cells.data() + i * m_shape.size();
        double distance = 1;
        if (hidden == 0) {
            distance = inkDistance(cell.data(), glyph, cell.size());
        } else {
            std::vector<std::uint8_t> shown(glyph, glyph + cell.size());
            for (std::size_t row = 0; row < std::size_t(m_shape.height()); ++row) {
                if (hidden >> row & 1)
                    std::fill_n(shown.begin() + std::ptrdiff_t(row * width), width, 0);
            }
            distance = inkDistance(cell.data(), shown.data(), cell.size());
        }
        if (distance < best.distance)
            best = {m_characters[i], distance};
    }
    return best;
}

} // namespace tovek
