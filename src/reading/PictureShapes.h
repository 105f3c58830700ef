// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/RunReading.h"

namespace tovek {

/// Takes out what the ink shows to be no character: filled squares, square frames and discs
/// (colour swatches, check boxes, bullets), and short words at the ends of a line whose characters
/// do not stand on the line as they should (icons beside their labels). Word breaks must be set.
void erasePictures(std::vector<InkSymbol> &symbols, const LetterMetrics &metrics);

} // namespace tovek
