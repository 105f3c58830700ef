// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/Hyphens.h"

#include "reading/InkSegments.h"
#include "reading/TextRuns.h"
#include "reading/WordBreaks.h"

#include <algorithm>
#include <cmath>

namespace tovek {

namespace {

/// Two hyphens and the gap between them, in widths of one; an en dash is narrower, an em dash
/// wider. No single dash begins a word, so that less is needed there.
constexpr double narrowestHyphenPair = 1.95;
constexpr double narrowestAtStart = 1.45;
constexpr double widestPair = 2.9;
/// In cap heights: what may be a pair where there is nothing to compare with.
constexpr double narrowestAlone = 0.68;
constexpr double widestAlone = 1.05;

/// A single hyphen somewhere in the picture.
struct Hyphen
{
    double capHeight = 0;
    bool isInCells = false; ///< in text of a fixed pitch, where it is wider
    int width = 0;
};

/// How many hyphens the dash at `i` was read as; 0 where there is none with ink of its own.
int hyphensAt(const std::vector<InkSymbol> &symbols, std::size_t i)
{
    const InkSymbol &first = symbols[i];
    if (first.text != QLatin1String("-") || first.unit.isEmpty() || first.shared > 2)
        return 0;
    if (first.shared == 1)
        return 1;
    const bool isPair = i + 1 < symbols.size() && symbols[i + 1].text == first.text
        && symbols[i + 1].unit == first.unit;
    return isPair ? 2 : 0;
}

/// A hyphen with letters or digits close on both sides.
bool joinsLetters(const std::vector<InkSymbol> &symbols, std::size_t i)
{
    return i > 0 && i + 1 < symbols.size() && symbols[i].shared == 1
        && symbols[i - 1].text.size() == 1 && symbols[i - 1].text.at(0).isLetterOrNumber()
        && symbols[i + 1].text.size() == 1 && symbols[i + 1].text.at(0).isLetterOrNumber()
        && !symbols[i].startsWord && !symbols[i + 1].startsWord;
}

/// A dash with a gap before it and none behind. One that is no pair of hyphens stands between words
/// or ends one.
bool beginsWord(const std::vector<InkSymbol> &symbols, std::size_t i, double cap)
{
    if (i + 1 >= symbols.size())
        return false;
    const QRect &dash = symbols[i].unit;
    const double after = symbols[i + 1].unit.left() - dash.right() - 1;
    const bool isAtStart =
        i == 0 || dash.left() - symbols[i - 1].unit.right() - 1 > std::max(cap * 0.25, after * 1.3);
    return isAtStart && after < cap * 0.4;
}

/// What one run's dashes are compared with.
struct Measure
{
    double capHeight = 0;
    int usual = 0; ///< width of a single hyphen; 0 when there is none
    double cell = 0; ///< width of a cell in text of a fixed pitch, else 0
};

bool isPair(const std::vector<InkSymbol> &symbols, std::size_t i, const Measure &measure)
{
    const auto &[cap, usual, cell] = measure;
    if (cell > 0)
        return symbols[i].unit.width() > cell * 1.2 && symbols[i].unit.width() < cell * 2.2;
    const bool isAtStart = beginsWord(symbols, i, cap);
    const int width = symbols[i].unit.width();
    if (usual == 0)
        return isAtStart && width >= cap * narrowestAlone && width <= cap * widestAlone;
    return width >= usual * (isAtStart ? narrowestAtStart : narrowestHyphenPair)
        && width <= usual * widestPair;
}

void split(std::vector<InkSymbol> &symbols, std::size_t i)
{
    InkSymbol second = symbols[i];
    second.startsWord = false;
    second.glyph.clear();
    second.box = sliceOf(second.unit, 1, 2);
    second.shared = 2;
    symbols[i].box = sliceOf(second.unit, 0, 2);
    symbols[i].shared = 2;
    symbols.insert(symbols.begin() + std::ptrdiff_t(i) + 1, std::move(second));
}

/// What is read as an em dash and runs into the word that it begins: no such dash begins a word.
bool isPairInWord(const std::vector<InkSymbol> &symbols, std::size_t i)
{
    return symbols[i].text == QStringLiteral("\u2014") && symbols[i].shared > 1
        && (i == 0 || symbols[i].startsWord) && i + 1 < symbols.size()
        && symbols[i + 1].unit == symbols[i].unit && symbols[i + 1].text.at(0).isLetterOrNumber();
}

/// The characters of the unit keep their common ink.
void splitInWord(std::vector<InkSymbol> &symbols, std::size_t i)
{
    symbols[i].text = QStringLiteral("-");
    InkSymbol second = symbols[i];
    second.startsWord = false;
    second.glyph.clear();
    second.box.setLeft(symbols[i].box.center().x() + 1);
    symbols[i].box.setRight(symbols[i].box.center().x());
    symbols.insert(symbols.begin() + std::ptrdiff_t(i) + 1, std::move(second));
}

void join(std::vector<InkSymbol> &symbols, std::size_t i)
{
    symbols[i].box = symbols[i].unit;
    symbols[i].shared = 1;
    symbols.erase(symbols.begin() + std::ptrdiff_t(i) + 1);
}

/// The dashes of one piece, and what they are compared with.
struct Dashes
{
    std::vector<InkSymbol> &symbols;
    Measure measure;
};

/// Of the single hyphens of the same font, in proportional text; 0 when there are none.
int usualWidth(const std::vector<Hyphen> &hyphens, double cap)
{
    std::vector<int> widths;
    for (const Hyphen &hyphen : hyphens) {
        if (!hyphen.isInCells && std::abs(hyphen.capHeight - cap) <= cap * sameFont)
            widths.push_back(hyphen.width);
    }
    std::sort(widths.begin(), widths.end());
    return widths.empty() ? 0 : widths[widths.size() / 2];
}

void countIn(std::vector<InkSymbol> &symbols, const Measure &measure)
{
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        if (isPairInWord(symbols, i)) {
            splitInWord(symbols, i);
            ++i;
            continue;
        }
        const int count = hyphensAt(symbols, i);
        if (count == 0)
            continue;
        const bool isTwo = isPair(symbols, i, measure);
        if (count == 1 && isTwo)
            split(symbols, i);
        else if (count == 2 && (measure.usual > 0 || measure.cell > 0) && !isTwo)
            join(symbols, i);
        if (symbols[i].shared == 2)
            ++i;
    }
}

} // namespace

void countHyphens(std::vector<ReadPiece> &pieces)
{
    std::vector<Dashes> lines;
    std::vector<Hyphen> hyphens;
    for (ReadPiece &piece : pieces) {
        const double cap = piece.metrics.capHeight;
        std::vector<InkSymbol> &symbols = piece.symbols;
        const auto pitch = fixedPitch(symbols, cap);
        lines.push_back({symbols, {cap, 0, pitch ? pitch->width : 0}});
        for (std::size_t i = 0; i < symbols.size(); ++i) {
            if (hyphensAt(symbols, i) == 1 && joinsLetters(symbols, i))
                hyphens.push_back({cap, pitch.has_value(), symbols[i].unit.width()});
        }
    }
    for (Dashes &line : lines) {
        line.measure.usual = usualWidth(hyphens, line.measure.capHeight);
        countIn(line.symbols, line.measure);
    }
}

void nameTildes(std::vector<InkSymbol> &symbols, const InkMap &ink, const TextRun &run,
                const LetterMetrics &metrics)
{
    static const QString dashes = QStringLiteral("-~_=\u2014\u2013");
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        const QRect unit = symbols[i].unit;
        std::size_t end = i;
        while (end < symbols.size() && symbols[end].unit == unit && !symbols[end].text.isEmpty()
               && dashes.contains(symbols[end].text))
            ++end;
        const bool isWhole = end > i && (end == symbols.size() || symbols[end].unit != unit);
        const bool isFlat = unit.width() >= unit.height() * 3 / 2
            && unit.bottom() + 1 < metrics.baseline - metrics.capHeight * 0.1;
        if (!isWhole || !isFlat || !isWave(ink, unit.translated(-run.box.topLeft())))
            continue;
        symbols.erase(symbols.begin() + std::ptrdiff_t(i) + 1,
                      symbols.begin() + std::ptrdiff_t(end));
        symbols[i].text = QStringLiteral("~");
        symbols[i].box = unit;
        symbols[i].shared = 1;
    }
}

} // namespace tovek
