// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/Plausibility.h"

#include "reading/Scripts.h"

#include <algorithm>

namespace tovek {

namespace {

/// The most characters that the engine reads into an icon.
constexpr qsizetype mostLettersInIcon = 3;
/// Below this a word of a few characters is noise.
constexpr double leastConfidence = 25;

/// Of 520 icons, arrows and grips on screens of programs that were read as up to three characters,
/// 320 are less sure than this; of 5150 short words in the same pictures eight are.
constexpr double sureOfShortWord = 95;
/// A run that is unsure as a whole (small or blurred text) is measured by its own long words.
constexpr double belowLongWords = 3;
/// Marks are less sure than letters, and so is what stands alone.
constexpr double sureOfMark = 90;
constexpr double sureAlone = 92;
/// What the engine likes to read into round icons.
constexpr double sureOfSymbol = 98;
/// Widths of letters in heights. Arrows that point up or down are flatter than a v, and those that
/// point to the side are narrower than a sign that compares.
constexpr double widestLetter = 1.45;
constexpr double narrowestComparison = 0.65;
/// Of the smaller of two words' heights and widths, what they cover of each other.
constexpr double mostCovered = 0.4;

/// In pixels; no letter can be read that is lower.
constexpr int leastLetterHeight = 6;
constexpr int leastMark = 3;
/// Of the lowest letters: so many of them are no misread speck.
constexpr qsizetype leastLowLetters = 3;
constexpr std::size_t mostInMark = 3;
/// Equal dots beside each other, and how much of its box a disc fills; letters have hollows.
constexpr std::size_t leastRow = 8;
constexpr double leastOfDisc = 0.7;

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
    return metrics.isCertain && metrics.capHeight >= leastLetterHeight
        && std::min(box.width(), box.height()) >= leastMark && words.size() == 1
        && marks.contains(words.front().text);
}

/// The mean of the words that are too long for a misread icon; 100 where there are none.
double sureness(const std::vector<ReadWord> &words)
{
    double sum = 0;
    int count = 0;
    for (const ReadWord &word : words) {
        if (word.text.size() <= mostLettersInIcon)
            continue;
        sum += word.confidence;
        ++count;
    }
    return count > 0 ? sum / count : 100;
}

/// A chevron beside a button or an entry that can be unfolded.
bool isArrow(const ReadWord &word)
{
    static const QString flat = QStringLiteral("vVxXyYaeosucz");
    static const QString narrow = QStringLiteral("<>");
    if (word.text.size() != 1)
        return false;
    const double ratio = double(word.box.width()) / word.box.height();
    return (flat.contains(word.text) && ratio > widestLetter)
        || (narrow.contains(word.text) && ratio < narrowestComparison);
}

bool isSymbols(const QString &text)
{
    static const QString symbols = QStringLiteral("@\u00ae\u00a9\u00a5\u20ac\u00a2&%#\u00a7");
    return std::all_of(text.begin(), text.end(), [](QChar c) { return symbols.contains(c); });
}

bool isUnsure(const ReadWord &word, double longWords, bool isAlone)
{
    // Half sure is what was named by its shape alone.
    if (isMarks(word.text))
        return word.text.size() == 1 && word.confidence > 50 && word.confidence < sureOfMark;
    if (isSymbols(word.text) && word.confidence < std::min(sureOfSymbol, longWords - 1))
        return true;
    const double least = std::min(sureOfShortWord, longWords - belowLongWords);
    return word.confidence < (isAlone ? sureAlone : least);
}

/// All words together are letters, and the engine is sure.
bool isLowText(const QRect &box, const std::vector<ReadWord> &words)
{
    qsizetype letters = 0;
    double least = 100;
    for (const ReadWord &word : words) {
        letters +=
            std::count_if(word.text.begin(), word.text.end(), [](QChar c) { return c.isLetter(); });
        least = std::min(least, word.confidence);
    }
    return box.height() >= lowestLetter && letters >= leastLowLetters && least >= sureAlone;
}

} // namespace

bool isMarks(const QString &text)
{
    static const QString marks = QStringLiteral("!\"'()*+,-./:;<=>?[\\]^_`{|}~\u2014\u2013");
    return std::all_of(text.begin(), text.end(), [](QChar c) { return marks.contains(c); });
}

void dropPictures(std::vector<ReadWord> &words, const LetterMetrics &metrics)
{
    const double longWords = sureness(words);
    const bool isAlone = words.size() == 1;
    std::erase_if(words, [&](const ReadWord &word) {
        if (word.text.size() > mostLettersInIcon)
            return false;
        return isIcon(word, metrics) || floats(word, metrics) || word.confidence < leastConfidence
            || isArrow(word) || isUnsure(word, longWords, isAlone);
    });
}

void dropCrowded(std::vector<std::vector<ReadWord>> &lines)
{
    const auto covers = [](const QRect &a, const QRect &b) {
        const QRect both = a & b;
        return both.height() > std::min(a.height(), b.height()) * mostCovered
            && both.width() > std::min(a.width(), b.width()) * mostCovered;
    };
    const std::vector<std::vector<ReadWord>> all = lines;
    // Most lines are nowhere near a word: of a large page's thousands, few words are compared.
    std::vector<QRect> bounds(all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (const ReadWord &word : all[i])
            bounds[i] |= word.box;
    }
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::erase_if(lines[i], [&](const ReadWord &word) {
            // Ideographs are words by themselves, and their lines stand close.
            if (word.text.size() > mostLettersInIcon || scriptOf(word.text) == Script::words)
                return false;
            for (std::size_t k = 0; k < all.size(); ++k) {
                if (k != i && bounds[k].intersects(word.box)
                    && std::any_of(all[k].begin(), all[k].end(), [&](const ReadWord &other) {
                           return covers(word.box, other.box);
                       }))
                    return true;
            }
            return false;
        });
    }
    std::erase_if(lines, [](const std::vector<ReadWord> &line) { return line.empty(); });
}

bool isSpecks(const TextRun &run)
{
    const auto &patches = run.patches;
    if (std::none_of(patches.begin(), patches.end(), isLetterHigh)) {
        // An equals sign, a quotation mark or an asterisk may stand alone.
        const bool isMark = patches.size() <= mostInMark
            && std::min(run.box.width(), run.box.height()) >= leastMark;
        return !isMark && std::none_of(patches.begin(), patches.end(), isDashWide);
    }
    const QSize first = patches.front().box.size();
    return patches.size() >= leastRow
        && std::all_of(patches.begin(), patches.end(), [&](const InkPatch &patch) {
               const QSize size = patch.box.size();
               return std::abs(size.width() - first.width()) <= 1
                   && std::abs(size.height() - first.height()) <= 1
                   && std::abs(size.width() - size.height()) <= 1
                   && patch.area >= size.width() * size.height() * leastOfDisc;
           });
}

bool isPictureRun(const TextRun &run, const std::vector<ReadWord> &words,
                  const LetterMetrics &metrics, double usualCap)
{
    const QRect &box = run.box;
    const bool isDash = box.height() <= 3 && box.width() >= 4;
    if (box.height() < leastLetterHeight && !isDash && !isMarkOnLine(box, words, metrics)
        && !isLowText(box, words))
        return true;
    if (run.patches.size() == 1 && box.height() > box.width() * 6 && box.width() <= 3)
        return true;
    // A row of buttons is one run of single icons, and a heading has a longer word.
    const auto longest =
        std::max_element(words.begin(), words.end(), [](const ReadWord &a, const ReadWord &b) {
            return a.text.size() < b.text.size();
        });
    const bool isLetters = std::none_of(words.begin(), words.end(), [](const ReadWord &word) {
        return scriptOf(word.text) == Script::words;
    });
    return isLetters && longest->text.size() <= 2 && usualCap > 0 && box.height() > usualCap * 1.45;
}

} // namespace tovek
