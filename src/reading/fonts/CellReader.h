// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/fonts/GlyphTable.h"

#include <QImage>

#include <map>
#include <optional>

namespace tovek {

/// What one cell of a grid holds.
struct ReadCell
{
    enum class Kind : std::uint8_t {
        blank,
        drawn, ///< frames and underlines, which are no text
        letter,
        foreign ///< no character of the font
    };
    Kind kind = Kind::blank;
    char32_t character = 0;
    double distance = 0; ///< from the font's character

    bool operator==(const ReadCell &) const = default;
};

/// Reads a grid's cells by comparing them with the characters of its font.
class CellReader
{
public:
    /// The image in 32 bits a pixel, and all must outlive this.
    CellReader(const QImage &image, GlyphTable &table, GlyphSource &source);

    /// Cells side by side from `left` on, on one baseline. Nothing when most of their height lies
    /// outside of the picture, or a part of their width.
    std::optional<std::vector<ReadCell>> row(int left, int baseline, int count);

private:
    /// A cell's pixels against its own background.
    struct Ink
    {
        std::vector<std::uint8_t> contrast;
        int peak = 0;
        QRgb background = 0;
    };
    Ink inkAt(int left, int top, QRgb before) const;
    bool isOverhang(const Ink &cell, int neighbourPeak) const;
    ReadCell cellOf(const Ink &ink, std::uint64_t outside);
    ReadCell compared(std::vector<std::uint8_t> cell, std::uint64_t outside) const;

    const QImage &m_image;
    GlyphTable &m_table;
    GlyphSource &m_source;
    std::map<std::pair<std::uint64_t, std::vector<std::uint8_t>>, ReadCell> m_known; ///< by ink
};

} // namespace tovek
