// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/ocr/RunReading.h"

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

/// Sets the word breaks from the measured gaps between the characters' ink: by the cells left
/// empty in text of a fixed pitch, else by the width that divides the line's gaps best into those
/// between letters and those between words. The engine's own breaks decide where the gaps do not.
void breakWords(std::vector<InkSymbol> &symbols, double capHeight);

} // namespace tovek
