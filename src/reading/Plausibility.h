// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/ReadWords.h"

namespace tovek {

/// Punctuation, dashes and bars alone.
bool isMarks(const QString &text);

/// Takes the words out of a run that are no text but what stands beside text on a screen: icons,
/// arrows, switches, pieces of frames. The engine reads a character into each of them, but their
/// shape or their place on the line is none that the character has.
void dropPictures(std::vector<ReadWord> &words, const LetterMetrics &metrics);

/// True for a run that no engine needs to look at: specks, dotted lines and grips, which have
/// nothing as high as the lowest letter, and rows of equal dots.
bool isSpecks(const TextRun &run);

/// True for a run that stands alone and is no text: a speck such as a frame's corner, a thin
/// upright line, or a few characters read into something much higher than the picture's other
/// letters. `usualCap` is the cap height of most of the picture's text, 0 when it has none.
bool isPictureRun(const TextRun &run, const std::vector<ReadWord> &words,
                  const LetterMetrics &metrics, double usualCap);

/// Takes out short words that lie on the words of another line, as the strokes in the icon of a
/// document do: no two lines of text cover each other.
void dropCrowded(std::vector<std::vector<ReadWord>> &lines);

} // namespace tovek
