// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/EngineWords.h"

#include "reading/Scripts.h"
#include "reading/TextRuns.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tovek {

namespace {

/// In letter heights: what a gap gains by its width, and from where on it gains no more. A blank is
/// wider than the gaps in a word, and the engine's place for it is off by less than a letter.
constexpr double widthWeight = 2.0;
constexpr double widestBlank = 0.5;
/// The same between ideographs, where the gaps within a character are as wide as those around it.
constexpr double widthWeightOfIdeographs = 0.3;
/// In letter heights: ink farther from its word is none of it, such as an icon that was passed
/// over.
constexpr double farthestInk = 1.5;

/// Of the usual width of a line's characters.
constexpr double mostOfUsualWidth = 2.0;

bool isMark(const QString &text)
{
    const auto characters = text.toStdU32String();
    return !characters.empty() && QChar::isMark(characters.front());
}

bool isPunctuation(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.isPunct(); });
}

bool opens(const QString &text)
{
    return text.back().category() == QChar::Punctuation_Open
        || text.back().category() == QChar::Punctuation_InitialQuote;
}

EngineWord joined(const EngineWord &a, const EngineWord &b)
{
    const double share = double(a.text.size()) / double(a.text.size() + b.text.size());
    const bool isReversed = isRightToLeft(a.text + b.text);
    return {isReversed ? b.text + a.text : a.text + b.text, std::min(a.left, b.left),
            std::max(a.right, b.right), a.confidence * share + b.confidence * (1 - share),
            a.box | b.box};
}

/// Only where words are not set apart by blanks anyway.
void joinMarks(std::vector<EngineWord> &words)
{
    for (std::size_t i = 1; i < words.size();) {
        const QString &before = words[i - 1].text;
        const QString &text = words[i].text;
        const bool isAttached = isMark(text)
            || (isIdeographic(before) && isPunctuation(text) && !opens(text))
            || (isIdeographic(text) && isPunctuation(before) && opens(before));
        if (!isAttached) {
            ++i;
            continue;
        }
        words[i - 1] = joined(words[i - 1], words[i]);
        words.erase(words.begin() + std::ptrdiff_t(i));
    }
}

/// The segment that each word begins with; the cheapest way to divide them in order.
std::vector<std::size_t> firstSegments(const std::vector<EngineWord> &words,
                                       const std::vector<QRect> &segments, double letterHeight)
{
    const std::size_t count = segments.size();
    constexpr double never = std::numeric_limits<double>::infinity();
    // Cost of the best division whose word `w` begins with segment `s`, and the one before it.
    std::vector<double> costs(words.size() * count, never);
    std::vector<std::size_t> before(words.size() * count, 0);
    costs[0] = 0;
    for (std::size_t w = 1; w < words.size(); ++w) {
        const double end = (words[w - 1].right + words[w].left) / 2;
        double best = never;
        std::size_t bestAt = 0;
        for (std::size_t s = w; s < count; ++s) {
            const double earlier = costs[(w - 1) * count + s - 1];
            if (earlier < best) {
                best = earlier;
                bestAt = s - 1;
            }
            const double gap = segments[s].left() - segments[s - 1].right() - 1;
            const double middle = segments[s].left() - gap / 2;
            costs[w * count + s] = best + std::abs(middle - end) / letterHeight
                - std::clamp(gap / letterHeight, 0.0, widestBlank)
                    * (isIdeographic(words[w].text) || isIdeographic(words[w - 1].text)
                           ? widthWeightOfIdeographs
                           : widthWeight);
            before[w * count + s] = bestAt;
        }
    }
    std::vector<std::size_t> first(words.size(), 0);
    const auto last = costs.end() - std::ptrdiff_t(count);
    std::size_t at = std::size_t(std::min_element(last, costs.end()) - last);
    for (std::size_t w = words.size(); w-- > 0;) {
        first[w] = at;
        at = before[w * count + at];
    }
    return first;
}

/// The widest that a character can be beside the others; the engine lets the one at a line's end
/// reach to the end of the strip, and in text from right to left that one stands elsewhere.
double widestSymbol(const std::vector<EngineSymbol> &symbols)
{
    std::vector<double> widths;
    for (const EngineSymbol &symbol : symbols)
        widths.push_back(symbol.right - symbol.left);
    if (widths.empty())
        return 0;
    const auto middle = widths.begin() + std::ptrdiff_t(widths.size() / 2);
    std::nth_element(widths.begin(), middle, widths.end());
    return *middle * mostOfUsualWidth;
}

} // namespace

std::vector<EngineWord> engineWords(const std::vector<EngineSymbol> &symbols,
                                    const LineStrip &strip)
{
    std::vector<EngineWord> words;
    const double widest = widestSymbol(symbols);
    int count = 0;
    for (const EngineSymbol &symbol : symbols) {
        const QString text = withoutDirectionMarks(symbol.text);
        const double left = strip.pictureX(symbol.left);
        const double right = strip.pictureX(std::min(symbol.right, symbol.left + widest));
        if (words.empty() || symbol.startsWord) {
            words.push_back({{}, left, right});
            count = 0;
        }
        EngineWord &word = words.back();
        word.text += text;
        word.left = std::min(word.left, left);
        word.right = std::max(word.right, right);
        word.confidence = (word.confidence * count + symbol.confidence) / (count + 1);
        ++count;
    }
    std::erase_if(words, [](const EngineWord &word) { return word.text.isEmpty(); });
    // The engine's places are rough: where it reads from left to right its order is better.
    const bool isReversed = std::any_of(words.begin(), words.end(), [](const EngineWord &word) {
        return isRightToLeft(word.text);
    });
    if (isReversed)
        std::stable_sort(words.begin(), words.end(), [](const EngineWord &a, const EngineWord &b) {
            return a.left + a.right < b.left + b.right;
        });
    joinMarks(words);
    return words;
}

std::vector<EngineSymbol> inVisualOrder(const std::vector<EngineSymbol> &symbols)
{
    std::vector<std::vector<EngineSymbol>> words;
    for (const EngineSymbol &symbol : symbols) {
        if (words.empty() || symbol.startsWord)
            words.emplace_back();
        words.back().push_back(symbol);
        words.back().back().text = withoutDirectionMarks(symbol.text);
    }
    std::stable_sort(words.begin(), words.end(),
                     [](const auto &a, const auto &b) { return a.front().left < b.front().left; });
    std::vector<EngineSymbol> result;
    for (const std::vector<EngineSymbol> &word : words) {
        std::copy_if(word.begin(), word.end(), std::back_inserter(result),
                     [](const EngineSymbol &symbol) { return !symbol.text.isEmpty(); });
    }
    return result;
}

void joinAtBlanks(std::vector<EngineWord> &words, double letterHeight)
{
    for (std::size_t i = 1; i < words.size();) {
        const double gap = words[i].box.left() - words[i - 1].box.right() - 1;
        if (gap > letterHeight * narrowestBlankBetweenWords) {
            ++i;
            continue;
        }
        words[i - 1] = joined(words[i - 1], words[i]);
        words.erase(words.begin() + std::ptrdiff_t(i));
    }
}

void takeInk(std::vector<EngineWord> &words, const std::vector<QRect> &segments,
             double letterHeight)
{
    if (words.empty())
        return;
    const auto take = [&](EngineWord &word, const QRect &segment) {
        const double off = std::max(word.left - centerX(segment), centerX(segment) - word.right);
        if (off <= letterHeight * farthestInk)
            word.box |= segment;
    };
    if (segments.size() < words.size()) {
        // Several words in one piece: each takes its own part of it.
        for (const QRect &segment : segments) {
            for (EngineWord &word : words) {
                const int left = std::max(segment.left(), int(std::lround(word.left)));
                const int right = std::min(segment.right(), int(std::lround(word.right)));
                if (left <= right)
                    word.box |= QRect(left, segment.top(), right - left + 1, segment.height());
            }
        }
        return;
    }
    const std::vector<std::size_t> first = firstSegments(words, segments, letterHeight);
    for (std::size_t w = 0; w < words.size(); ++w) {
        const std::size_t end = w + 1 < words.size() ? first[w + 1] : segments.size();
        for (std::size_t s = first[w]; s < end; ++s)
            take(words[w], segments[s]);
    }
}

} // namespace tovek
