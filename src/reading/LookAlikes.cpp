// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/LookAlikes.h"

#include "reading/InkSegments.h"

#include <algorithm>
#include <cmath>

namespace tovek {

namespace {

/// In cap heights: the widest plain bar, such as l in a font without serifs.
constexpr double widestBar = 0.24;
/// In cap heights: how far an edge may lie off the line that it should be on.
constexpr double edgeTolerance = 0.12;

/// Of the letter's width: where the stem of an l with a foot is, right of any L's.
constexpr double leftmostStem = 0.4;
/// Of the ring's ink: what the mark in a zero has at least.
constexpr double leastMarkOfZero = 0.5;

/// In cap heights: ascenders are hardly ever as tall; and how many letters must be.
constexpr double tallerThanCapitals = 1.2;
constexpr std::ptrdiff_t leastTaller = 3;

/// A word as indices into the symbols.
struct Span
{
    std::size_t from = 0;
    std::size_t to = 0;
};

std::vector<Span> wordsIn(const std::vector<InkSymbol> &symbols)
{
    std::vector<Span> words;
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        if (words.empty() || symbols[i].startsWord)
            words.push_back({i, i});
        words.back().to = i + 1;
    }
    return words;
}

QChar charAt(const std::vector<InkSymbol> &symbols, const Span &word, std::ptrdiff_t i)
{
    if (i < std::ptrdiff_t(word.from) || i >= std::ptrdiff_t(word.to)
        || symbols[std::size_t(i)].text.size() != 1)
        return {};
    return symbols[std::size_t(i)].text.at(0);
}

/// The height of a letter that has its ink to itself and stands on the baseline; 0 for others.
double heightOnLine(const InkSymbol &symbol, const LetterMetrics &metrics)
{
    const double below = symbol.box.bottom() + 1 - metrics.baseline;
    if (symbol.shared != 1 || std::abs(below) > metrics.capHeight * edgeTolerance + 0.5)
        return 0;
    return metrics.baseline - symbol.box.top();
}

/// Ink of the same strength in every row: no dot, no flag, no foot.
bool isPlainBar(const InkSymbol &symbol, const LetterMetrics &metrics)
{
    if (symbol.glyph.empty() || symbol.unit.width() > std::max(2.0, metrics.capHeight * widestBar))
        return false;
    const int width = symbol.unit.width();
    int weakest = 255 * width;
    int strongest = 0;
    // The ends are soft where the letter does not fill its first and last row.
    for (int y = 1; y + 1 < symbol.unit.height(); ++y) {
        int ink = 0;
        for (int x = 0; x < width; ++x)
            ink += symbol.glyph[std::size_t(y) * width + x];
        weakest = std::min(weakest, ink);
        strongest = std::max(strongest, ink);
    }
    return strongest > 0 && weakest * 10 >= strongest * 8;
}

bool hasEmptyRow(const InkSymbol &symbol)
{
    const int width = symbol.unit.width();
    for (int y = 1; !symbol.glyph.empty() && y + 1 < symbol.unit.height(); ++y) {
        const auto row = symbol.glyph.begin() + std::ptrdiff_t(y) * width;
        if (std::all_of(row, row + width, [](int ink) { return ink < strokeInk; }))
            return true;
    }
    return false;
}

/// What the engine calls an i, a 1 or an exclamation mark without seeing dot or flag, and a
/// vertical bar that stands on the line like a letter.
void settleBar(InkSymbol &symbol, const LetterMetrics &metrics)
{
    static const QString taken = QStringLiteral("1i!|]Lt");
    if (symbol.text.size() != 1 || symbol.shared != 1 || !taken.contains(symbol.text)
        || !isPlainBar(symbol, metrics))
        return;
    const double height = heightOnLine(symbol, metrics);
    if (height > metrics.capHeight * (1 - edgeTolerance)
        && height < metrics.capHeight * (1 + edgeTolerance) + 1)
        symbol.text = QStringLiteral("l");
}

/// The mean ink of a part of the unit, given in shares of its width and height.
double inkIn(const InkSymbol &symbol, double left, double top, double right, double bottom)
{
    const int width = symbol.unit.width();
    const int height = symbol.unit.height();
    double sum = 0;
    int count = 0;
    for (int y = int(top * height); y < std::max(int(top * height) + 1, int(bottom * height));
         ++y) {
        for (int x = int(left * width); x < std::max(int(left * width) + 1, int(right * width));
             ++x, ++count)
            sum += symbol.glyph[std::size_t(y) * width + x];
    }
    return sum / count;
}

/// Fonts for code mark the zero with a dot or a stroke in its middle, where no letter has ink that
/// the engine takes it for.
void settleZero(InkSymbol &symbol, const LetterMetrics &metrics)
{
    static const QString taken = QStringLiteral("OoDQ");
    if (symbol.text.size() != 1 || symbol.shared != 1 || !taken.contains(symbol.text)
        || symbol.glyph.empty() || symbol.unit.width() < 4 || symbol.unit.height() < 7
        || heightOnLine(symbol, metrics) < metrics.capHeight * (1 - edgeTolerance))
        return;
    const double middle = inkIn(symbol, 0.4, 0.4, 0.6, 0.6);
    const double ring = std::max(inkIn(symbol, 0.4, 0, 0.6, 0.15), inkIn(symbol, 0, 0.4, 0.2, 0.6));
    const double above = inkIn(symbol, 0.4, 0.2, 0.6, 0.35);
    if (middle > ring * leastMarkOfZero && middle > strokeInk && above < middle * 0.8)
        symbol.text = QStringLiteral("0");
}

/// An l with a foot, as fonts for code have it, has its stem in the middle; an L has it on the
/// left.
void settleFoot(InkSymbol &symbol)
{
    if (symbol.text != QLatin1String("L") || symbol.shared != 1 || symbol.glyph.empty()
        || symbol.unit.width() < 3)
        return;
    const int width = symbol.unit.width();
    double sum = 0;
    double weighted = 0;
    for (int y = symbol.unit.height() * 3 / 10; y < symbol.unit.height() * 7 / 10; ++y) {
        for (int x = 0; x < width; ++x) {
            const int ink = symbol.glyph[std::size_t(y) * width + x];
            sum += ink;
            weighted += ink * (x + 0.5);
        }
    }
    if (weighted > sum * width * leftmostStem)
        symbol.text = QStringLiteral("l");
}

enum class Kind { none, upper, lower, digit, other };

Kind kindOf(QChar c)
{
    if (c.isNull())
        return Kind::none;
    if (c.isDigit())
        return Kind::digit;
    return c.isUpper() ? Kind::upper : c.isLower() ? Kind::lower : Kind::other;
}

/// l, I and a bar are one shape in many fonts.
bool isBar(QChar c)
{
    return c == 'l' || c == 'I' || c == '|';
}

/// How many letters of a kind a word has, apart from those that are in question.
int countOf(const std::vector<InkSymbol> &symbols, const Span &word, Kind kind)
{
    int count = 0;
    for (std::size_t i = word.from; i < word.to; ++i) {
        const QChar c = charAt(symbols, word, std::ptrdiff_t(i));
        count += !isBar(c) && kindOf(c) == kind;
    }
    return count;
}

/// The same character again stands for the kind of the first other one.
Kind kindBeside(const std::vector<InkSymbol> &symbols, const Span &word, std::size_t i, int step)
{
    std::ptrdiff_t at = std::ptrdiff_t(i) + step;
    while (isBar(charAt(symbols, word, at)))
        at += step;
    return kindOf(charAt(symbols, word, at));
}

/// Letters whose capital is only larger. One that would stand in the wrong place for its case is
/// left alone: the line may hold text of two sizes.
void settleCase(std::vector<InkSymbol> &symbols, const Span &word, std::size_t i,
                const LetterMetrics &metrics)
{
    static const QString sameShape = QStringLiteral("cosuvwxzCOSUVWXZ");
    InkSymbol &symbol = symbols[i];
    if (!metrics.isCertain || symbol.text.size() != 1 || !sameShape.contains(symbol.text))
        return;
    const double height = heightOnLine(symbol, metrics);
    if (height <= 0)
        return;
    const double toCapital = std::abs(height - metrics.capHeight);
    const double toSmall = std::abs(height - metrics.xHeight);
    const Kind before = kindOf(charAt(symbols, word, std::ptrdiff_t(i) - 1));
    const Kind after = kindOf(charAt(symbols, word, std::ptrdiff_t(i) + 1));
    if (toCapital * 3 < toSmall && before != Kind::lower)
        symbol.text = symbol.text.toUpper();
    else if (toSmall * 3 < toCapital && before != Kind::upper && after != Kind::upper)
        symbol.text = symbol.text.toLower();
}

void settleByNeighbours(std::vector<InkSymbol> &symbols, const Span &word, std::size_t i)
{
    QString &text = symbols[i].text;
    if (text.size() != 1)
        return;
    const QChar c = text.at(0);
    const Kind before = kindBeside(symbols, word, i, -1);
    const Kind after = kindBeside(symbols, word, i, 1);
    if (isBar(c)) {
        const int upper = countOf(symbols, word, Kind::upper);
        const int lower = countOf(symbols, word, Kind::lower);
        const bool isAlone = before == Kind::none && after == Kind::none;
        const bool isCapital = upper >= 2 && lower == 0;
        const bool isInCapitals = before == Kind::upper && after == Kind::upper;
        if (c == 'l' && (isCapital || isInCapitals || (isAlone && word.to - word.from == 1)))
            text = QStringLiteral("I");
        else if (c != 'l' && before == Kind::lower && after == Kind::lower)
            text = QStringLiteral("l");
    }
    if (before == Kind::digit && after == Kind::digit) {
        static const QString letters = QStringLiteral("lIOoS");
        static const QString digits = QStringLiteral("11005");
        if (const auto at = letters.indexOf(c); at >= 0)
            text = digits.mid(at, 1);
    }
}

/// Two fonts of different sizes on one line, as code within a sentence: some letters reach clearly
/// above what was taken for the capitals' height, which may be the other font's.
bool hasTwoSizes(const std::vector<InkSymbol> &symbols, const LetterMetrics &metrics)
{
    const auto count = std::count_if(symbols.begin(), symbols.end(), [&](const InkSymbol &symbol) {
        static const QString tall = QStringLiteral("bdfhkltABCDEFGHIKLMNOPRSTUVWXYZ");
        return symbol.text.size() == 1 && tall.contains(symbol.text)
            && heightOnLine(symbol, metrics) > metrics.capHeight * tallerThanCapitals + 0.5;
    });
    return count >= leastTaller;
}

} // namespace

void settleLookAlikes(std::vector<InkSymbol> &symbols, const LetterMetrics &metrics)
{
    for (InkSymbol &symbol : symbols) {
        settleBar(symbol, metrics);
        settleZero(symbol, metrics);
        settleFoot(symbol);
        if (symbol.text == QLatin1String("l") && symbol.shared == 1
            && symbol.unit.width() <= metrics.capHeight * widestBar && hasEmptyRow(symbol))
            symbol.text = QStringLiteral("i");
    }
    const bool isOneSize = !hasTwoSizes(symbols, metrics);
    for (const Span &word : wordsIn(symbols)) {
        for (std::size_t i = word.from; isOneSize && i < word.to; ++i)
            settleCase(symbols, word, i, metrics);
        for (std::size_t i = word.from; i < word.to; ++i)
            settleByNeighbours(symbols, word, i);
    }
}

} // namespace tovek
