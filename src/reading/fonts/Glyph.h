// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QRect>

#include <cstdint>
#include <vector>

namespace tovek {

/// The ink of one character, its strongest pixel 255.
struct Glyph
{
    QRect box; ///< y down
    std::vector<std::uint8_t> ink; ///< row by row

    bool isEmpty() const { return ink.empty(); }
    std::uint8_t at(int x, int y) const ///< in the coordinates of the box
    {
        return ink[std::size_t(y - box.top()) * box.width() + (x - box.left())];
    }
    bool operator==(const Glyph &) const = default;
};

/// With the strongest pixel at 255 and without the faint rows and columns at its sides, which a
/// neighbour or the noise of a picture may have put there. Empty without ink.
Glyph trimmed(const Glyph &glyph);

/// How much the ink of two glyphs differs when they are laid upper left corner on upper left
/// corner: 0 when they are equal, 1 when they have no ink in common.
double inkDistance(const Glyph &a, const Glyph &b);

/// The same for two pictures of one size.
double inkDistance(const std::uint8_t *a, const std::uint8_t *b, std::size_t size);

} // namespace tovek
