// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/fonts/GlyphSource.h"

namespace tovek {

/// A font in one size, drawn in one way.
struct FontChoice
{
    std::size_t font = 0; ///< as the source counts them
    GlyphStyle style;

    bool operator==(const FontChoice &) const = default;
};

/// The part of a cell that characters draw into.
struct CellShape
{
    int width = 0;
    int ascent = 0; ///< rows above the baseline
    int descent = 0; ///< rows below it

    int height() const { return ascent + descent; }
    std::size_t size() const { return std::size_t(width) * std::size_t(height()); }
    bool operator==(const CellShape &) const = default;
};

/// A character of a font and how it looks alone.
struct NamedGlyph
{
    char32_t character = 0;
    Glyph glyph; ///< trimmed; the box from the pen's place
};

/// The printable characters of ASCII in a font's own face.
std::vector<NamedGlyph> lettersOf(GlyphSource &source, const FontChoice &choice);

/// A font's characters as cells, to compare a picture's cells with.
class GlyphTable
{
public:
    struct Match
    {
        char32_t character = 0; ///< may be one of those that frames are drawn with
        double distance = 1;
    };

    /// The printable characters of ASCII, regular and bold, and those of frames. `rowPitch` limits
    /// the cells' height; 0 when it is not known.
    GlyphTable(GlyphSource &source, const FontChoice &choice, int cellWidth, int rowPitch);

    const CellShape &shape() const { return m_shape; }
    /// True for the characters that frames are drawn with and bars are filled with.
    static bool isDrawn(char32_t character);
    /// Adds the slanted face and the characters of other scripts, arrows and symbols, once.
    void extend(GlyphSource &source);
    /// `cell` has the shape's size and its strongest pixel at 255. Rows of `hidden`, a bit a row
    /// from the top, are not compared.
    Match nearest(const std::vector<std::uint8_t> &cell, std::uint64_t hidden) const;
    /// The same among what was added by extend().
    Match nearestOther(const std::vector<std::uint8_t> &cell, std::uint64_t hidden) const;

private:
    void add(GlyphSource &source, FontFace face, char32_t from, char32_t to);
    void addCell(char32_t character, const Glyph &glyph);
    Match nearestIn(std::size_t from, std::size_t to, const std::vector<std::uint8_t> &cell,
                    std::uint64_t hidden) const;

    FontChoice m_choice;
    CellShape m_shape;
    std::vector<char32_t> m_characters;
    std::vector<std::uint8_t> m_cells; ///< one after the other
    std::size_t m_usual = 0; ///< the first so many are those of ASCII and frames
};

} // namespace tovek
