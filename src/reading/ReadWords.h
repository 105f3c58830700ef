// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/RunReading.h"

namespace tovek {

struct ReadWord
{
    QString text;
    QRect box;
    double confidence = 0; ///< the mean of its characters

    bool operator==(const ReadWord &) const = default;
};

/// The words of a run, in order.
std::vector<ReadWord> readWords(const std::vector<InkSymbol> &symbols);

/// Gives the words of one line one top and one bottom, so that they are found on one line again
/// whatever ascenders and descenders they have, and words of dashes and dots alone some width.
void makeLineHigh(std::vector<ReadWord> &words, const LetterMetrics &metrics, const QSize &picture);

} // namespace tovek
