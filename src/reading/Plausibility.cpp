// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/Plausibility.h"

#include <algorithm>

namespace tovek {

namespace {

/// The most characters that the engine reads into an icon.
constexpr qsizetype mostInIcon = 3;
/// Below this a word of a few characters is noise.
constexpr double leastConfidence = 25;

/// In pixels; no letter can be read that is lower.
constexpr int leastHeight = 6;
constexpr int leastMark = 3;

/// Higher and lower than the line's letters, and about as wide as high.
bool isIcon(const ReadWord &word, const LetterMetrics &metrics)
{
    const double cap = metrics.capHeight;
    const double above = metrics.baseline - word.box.top();
    const double below = word.box.bottom() + 1 - metrics.baseline;
    const double ratio = double(word.box.width()) / word.box.height();
    return above > cap * 1.08 && below > cap * 0.08 && word.box.height() > cap * 1.25
        && ratio > 0.55 && ratio < 1.8;
}

/// A letter or digit that floats above the line or is far too low for one.
bool floats(const ReadWord &word, const LetterMetrics &metrics)
{
    if (word.text.size() != 1 || !word.text.at(0).isLetterOrNumber())
        return false;
    const double cap = metrics.capHeight;
    const double below = word.box.bottom() + 1 - metrics.baseline;
    return below < -cap * 0.15 || word.box.height() < metrics.xHeight * 0.75
        || word.box.width() > cap * 1.5;
}

/// An asterisk by itself, and its like; specks are read as dots, dashes and commas.
bool isMarkOnLine(const QRect &box, const std::vector<ReadWord> &words,
                  const LetterMetrics &metrics)
{
    static const QString marks = QStringLiteral("*\"^~+=");
    return metrics.isCertain && metrics.capHeight >= leastHeight
        && std::min(box.width(), box.height()) >= leastMark && words.size() == 1
        && marks.contains(words.front().text);
}

} // namespace

void dropPictures(std::vector<ReadWord> &words, const LetterMetrics &metrics)
{
    std::erase_if(words, [&](const ReadWord &word) {
        if (word.text.size() > mostInIcon)
            return false;
        return isIcon(word, metrics) || floats(word, metrics) || word.confidence < leastConfidence;
    });
}

bool isPictureRun(const TextRun &run, const std::vector<ReadWord> &words,
                  const LetterMetrics &metrics, double usualCap)
{
    const QRect &box = run.box;
    const bool isDash = box.height() <= 3 && box.width() >= 4;
    if (box.height() < leastHeight && !isDash && !isMarkOnLine(box, words, metrics))
        return true;
    if (run.patches.size() == 1 && box.height() > box.width() * 6 && box.width() <= 3)
        return true;
    qsizetype length = 0;
    for (const ReadWord &word : words)
        length += word.text.size();
    return length <= 2 && usualCap > 0 && box.height() > usualCap * 1.45;
}

} // namespace tovek
