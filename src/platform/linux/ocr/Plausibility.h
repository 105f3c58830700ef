// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/ocr/RunReading.h"

namespace tovek {

/// Takes the words out of a run that are no text but what stands beside text on a screen: icons,
/// arrows, switches, pieces of frames. The engine reads a character into each of them, but their
/// shape or their place on the line is none that the character has.
void dropPictures(std::vector<ReadWord> &words, const LetterMetrics &metrics);

} // namespace tovek
