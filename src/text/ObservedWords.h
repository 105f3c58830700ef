// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "text/TextRegion.h"

#include <QSize>

#include <vector>

namespace tovek {

struct TextObservation;

/// The words of one recognised line: the text is split at blanks and tabs, each word takes the box
/// of its own occurrence, and a word without a box is left out.
std::vector<TextRegion> wordsOf(const TextObservation &observation, QSize imageSize);

} // namespace tovek
