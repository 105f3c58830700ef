// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/ReadPiece.h"

#include <optional>

namespace tovek {

/// Characters on a grid, as terminals and code editors set them.
struct Pitch
{
    double width = 0; ///< of one cell, in pixels
    std::vector<int> cells; ///< one a character; rising
};

/// Nothing for proportional text and for lines too short to tell.
std::optional<Pitch> fixedPitch(const std::vector<InkSymbol> &symbols, double capHeight);

/// Characters too few to tell a pitch by themselves, on cells that are known from a line in the
/// same size; nothing where they do not stand on them.
std::optional<Pitch> onPitch(const std::vector<InkSymbol> &symbols, double cellWidth);

/// Sets the word breaks from the measured gaps between the characters' ink: by the cells left
/// empty in text of a fixed pitch, else by the width that divides the line's gaps best into those
/// between letters and those between words. The engine's own breaks decide where the gaps do not.
/// `cellWidths` are those of the picture's lines of a fixed pitch in the same size.
void breakWords(std::vector<InkSymbol> &symbols, double capHeight,
                const std::vector<double> &cellWidths = {});

/// The same for all pieces of a picture.
void breakAllWords(std::vector<ReadPiece> &pieces);

} // namespace tovek
