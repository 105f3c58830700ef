// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/ReadWords.h"

#include <algorithm>
#include <cmath>

namespace tovek {

namespace {

/// What a line takes above and below its baseline, in cap heights.
constexpr double lineAscent = 1.2;
constexpr double lineDescent = 0.35;
/// In cap heights: the blank on either side of a mark, and what is a mark by its size.
constexpr double bearingOfMarks = 0.18;
constexpr double highestMarks = 0.6;
constexpr double widestMarks = 0.6;

/// The ink of a dash or a dot is a small part of the character's cell: a word of marks alone gets
/// some of the blank around it, so that it can be found and pointed at.
void widenMarks(std::vector<ReadWord> &words, const LetterMetrics &metrics, int pictureWidth)
{
    const int most = int(std::lround(metrics.capHeight * bearingOfMarks));
    for (std::size_t i = 0; i < words.size(); ++i) {
        QRect &box = words[i].box;
        if (box.height() > metrics.capHeight * highestMarks
            || box.width() > metrics.capHeight * widestMarks)
            continue;
        const int before = i > 0 ? words[i - 1].box.right() : -1;
        const int after = i + 1 < words.size() ? words[i + 1].box.left() : pictureWidth;
        box.adjust(-std::clamp((box.left() - before - 1) / 2, 0, most), 0,
                   std::clamp((after - box.right() - 1) / 2, 0, most), 0);
    }
}

} // namespace

std::vector<ReadWord> readWords(const std::vector<InkSymbol> &symbols)
{
    std::vector<ReadWord> words;
    int count = 0;
    for (const InkSymbol &symbol : symbols) {
        if (words.empty() || symbol.startsWord) {
            words.emplace_back();
            count = 0;
        }
        ReadWord &word = words.back();
        word.text += symbol.text;
        word.box |= symbol.box;
        word.confidence = (word.confidence * count + symbol.confidence) / (count + 1);
        ++count;
    }
    std::erase_if(words, [](const ReadWord &word) { return word.box.isEmpty(); });
    return words;
}

void makeLineHigh(std::vector<ReadWord> &words, const LetterMetrics &metrics, const QSize &picture)
{
    QRect line(0, int(std::lround(metrics.baseline - metrics.capHeight * lineAscent)), 1, 1);
    line.setBottom(int(std::lround(metrics.baseline + metrics.capHeight * lineDescent)) - 1);
    for (const ReadWord &word : words)
        line |= word.box;
    widenMarks(words, metrics, picture.width());
    for (ReadWord &word : words) {
        word.box.setTop(std::max(0, line.top()));
        word.box.setBottom(std::min(picture.height() - 1, line.bottom()));
    }
}

} // namespace tovek
