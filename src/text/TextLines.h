// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "text/TextRegion.h"

#include <vector>

namespace tovek {

/// The words as text: those of a line joined by a blank, the lines by a line feed. A word stays on
/// the line of the word before it when the middles of the two differ by at most 0.02 of the
/// picture's height; the first word of the line plays no part, so that a sloping line holds
/// together. Empty for no words.
QString joinedLines(const std::vector<TextRegion> &regions);

} // namespace tovek
