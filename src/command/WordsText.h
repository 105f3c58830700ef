// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "command/CommandLine.h"
#include "text/TextRegion.h"

#include <QSize>

#include <vector>

namespace tovek {

/// The words of each line, in the order in which they were recognised.
using WordLines = std::vector<std::vector<TextRegion>>;

/// What the program prints of the words in a picture of that many pixels, each line ended by a line
/// feed; nothing for no words, but an empty array as JSON. Boxes are whole pixels from the
/// picture's top left corner, lines are counted from 1.
QString wordsText(const WordLines &lines, QSize picture, WordsFormat format);

} // namespace tovek
