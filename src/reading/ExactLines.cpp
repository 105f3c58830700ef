// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/ExactLines.h"

#include <algorithm>

namespace tovek {

namespace {

/// Between two words of one line, in heights of a line.
constexpr double widestBeside = 1.5;

bool standsBeside(const QRect &word, const QRect &other)
{
    const int middle = word.center().y();
    const int gap = std::max(word.left() - other.right(), other.left() - word.right());
    return middle >= other.top() && middle <= other.bottom()
        && gap <= other.height() * widestBeside;
}

/// Words that the engine read beside words of a line that was read without it belong to that line.
void giveToLines(std::vector<ReadWord> &words, std::vector<std::vector<ReadWord>> &lines)
{
    std::erase_if(words, [&lines](const ReadWord &word) {
        for (std::vector<ReadWord> &line : lines) {
            const auto at = std::find_if(line.begin(), line.end(), [&](const ReadWord &other) {
                return word.box.left() < other.box.left();
            });
            const bool isBeside = (at != line.end() && standsBeside(word.box, at->box))
                || (at != line.begin() && standsBeside(word.box, std::prev(at)->box));
            if (!isBeside)
                continue;
            line.insert(at, word);
            return true;
        }
        return false;
    });
}

} // namespace

std::vector<std::vector<ReadWord>> withExactLines(std::vector<std::vector<ReadWord>> lines,
                                                  const ExactReading &reading,
                                                  std::vector<std::vector<ReadWord>> exact)
{
    for (std::vector<ReadWord> &line : lines)
        std::erase_if(line, [&](const ReadWord &word) { return reading.isIn(word.box); });
    for (std::vector<ReadWord> &line : lines)
        giveToLines(line, exact);
    std::erase_if(lines, [](const auto &line) { return line.empty(); });
    for (std::vector<ReadWord> &line : exact)
        lines.push_back(std::move(line));
    return lines;
}

} // namespace tovek
