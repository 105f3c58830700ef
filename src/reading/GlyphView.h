// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/GlyphNet.h"
#include "reading/TextRuns.h"

namespace tovek {

/// Even ink as the network looks at it: on the line of its run, scaled by the run's capitals. `ink`
/// has the pixels of `box` row by row.
GlyphNet::Glyph glyphView(const std::vector<std::uint8_t> &ink, const QRect &box,
                          const LetterMetrics &metrics);

} // namespace tovek
