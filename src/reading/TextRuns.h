// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/InkMap.h"

namespace tovek {

/// One stretch of text on one line, without a gap as wide as one between columns.
struct TextRun
{
    QRect box;
    std::vector<InkPatch> patches; ///< from left to right
};

/// Of the run, what has its middle between the box's sides: what lies between two columns.
TextRun partOf(const TextRun &run, const QRect &box);

/// Rows of pixels: the small letters of 9 px text.
inline constexpr int lowestLetter = 5;
/// As high as a letter can be, at least.
bool isLetterHigh(const InkPatch &patch);
/// As wide for its height as dashes are.
bool isDashWide(const InkPatch &patch);

inline double centerX(const QRect &box)
{
    return box.left() + box.width() / 2.0;
}

/// The runs in a picture as they are read: bands from the top, in each its columns from the left.
/// Patches that no letter can be (frames, large pictures) are left out.
std::vector<TextRun> textRuns(const std::vector<InkPatch> &patches);

/// The heights that a run's letters share, in pixels of the picture.
struct LetterMetrics
{
    double baseline = 0; ///< y of the lower edge of letters without a descender
    double capHeight = 0; ///< of capitals and digits
    double xHeight = 0; ///< of small letters; derived from the other when there are none
    bool isCertain = false; ///< both heights were seen

    bool operator==(const LetterMetrics &) const = default;
};

/// How much the cap heights of two lines in the same font may differ, of either.
inline constexpr double sameFont = 0.12;

/// Measured from the patches' edges. A run with letters of one height only is taken for capitals.
LetterMetrics letterMetrics(const TextRun &run);

/// A run with the heights of its letters.
struct PageRun
{
    TextRun text;
    LetterMetrics metrics;
};

/// Settles the runs with letters of one height only after the other runs of the picture: the same
/// font usually stands elsewhere in it, and a few marks by themselves ("*/", "||") stand on the
/// line of the run beside them.
void settleMetrics(std::vector<PageRun> &runs);

} // namespace tovek
