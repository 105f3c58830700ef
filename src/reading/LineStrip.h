// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/TextRuns.h"

namespace tovek {

/// One run as the engine reads it best: dark on white, every letter height scaled to the same one,
/// the baseline at the same row, grey values row by row.
struct LineStrip
{
    /// The engine's network was trained on lines scaled to 36 rows, of which the letters between
    /// ascender and descender took most.
    static constexpr int height = 36;
    static constexpr double capRows = 20;
    static constexpr double baselineRow = 27.5;

    int width = 0;
    std::vector<std::uint8_t> grey;
    double left = 0; ///< the picture's x at the strip's left edge
    double scale = 1; ///< strip pixels per picture pixel

    double pictureX(double stripX) const { return left + stripX / scale; }
};

/// The run's own piece of the map, with each part of the line against its own strongest ink, so
/// that words of different colours come out equally strong.
InkMap evenInk(const InkMap &map, const TextRun &run, const LetterMetrics &metrics);

/// `ink` as from evenInk.
LineStrip lineStrip(const InkMap &ink, const TextRun &run, const LetterMetrics &metrics);

} // namespace tovek
