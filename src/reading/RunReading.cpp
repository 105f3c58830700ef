// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/RunReading.h"

#include "reading/Scripts.h"
#include "reading/TextRuns.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace tovek {

namespace {

/// The most characters that one piece of ink is divided among, and the most pieces of one
/// character ("%" and the double quote have several).
constexpr int mostShared = 32;
constexpr int mostReadPieces = 3;

/// Costs of an alignment. The engine's places drift by up to a letter, so that the width of the
/// ink counts as much as its distance.
constexpr double unreadSegment = 0.9;
constexpr double unseenCharacter = 1.6;
constexpr double unreadMark = 0.35; ///< ink that is named by its shape
constexpr double extraPiece = 0.6;
constexpr double extraStroke = 0.1; ///< of the double quote
constexpr double extraShare = 0.25;
constexpr double distanceWeight = 0.25;
constexpr double farthest = 1.2;
/// In cap heights: nothing that lies farther apart is compared.
constexpr double widestDrift = 4;
constexpr double runWidthWeight = 1.0;
constexpr double widthTolerance = 0.15;
/// In cap heights: no two characters fit into narrower ink.
constexpr double narrowestRunPair = 0.3;
/// A character that starts a word has a gap before it, the others have none.
constexpr double gapWeight = 0.5;
constexpr double wordGap = 0.25;
constexpr double widestRunGap = 0.7;

/// How wide the ink of a character usually is, in cap heights.
double usualWidth(const QString &character)
{
    static const QString thin = QStringLiteral("iIl|!.,:;'`\u2018\u2019");
    static const QString slim = QStringLiteral("jftr()[]{}1/\\\"-*\u00b0\u201c\u201d");
    static const QString wide = QStringLiteral("mwMW@%\u2014\u00a9\u00ae");
    if (thin.contains(character))
        return 0.2;
    if (slim.contains(character))
        return 0.42;
    if (wide.contains(character))
        return 1.1;
    return character.at(0).isUpper() ? 0.85 : 0.67;
}

/// Marks that are told by shape and place alone.
enum class Mark { none, dash, underscore, dot };

/// Two rows are as thin as a stroke gets in small text, but there they may be a piece of a letter.
Mark markOf(const QRect &box, const LetterMetrics &metrics, bool isReadAsDash = false)
{
    const double cap = metrics.capHeight;
    const double height = box.height() / cap;
    const double width = box.width() / cap;
    const double above = (metrics.baseline - box.bottom() - 1) / cap;
    const bool isThin = height <= 0.24 || (isReadAsDash && box.height() <= 2);
    const bool isFlat =
        isThin && box.width() >= box.height() * 1.4 && width >= (isReadAsDash ? 0.15 : 0.22);
    if (isFlat && above >= 0.14 && above <= 0.6 && width <= 1.2)
        return Mark::dash;
    if (isFlat && above <= 0.02 && width >= 0.4)
        return Mark::underscore;
    const bool isSmall = height <= 0.3 && width <= 0.34 && width >= 0.08;
    if (isSmall && std::abs(above) <= 0.1 && !isFlat)
        return Mark::dot;
    return Mark::none;
}

/// Underscores touch each other in most fonts; one is about two thirds of a capital's height wide.
int underscoresIn(const QRect &box, const LetterMetrics &metrics)
{
    return std::max(1, int(std::lround(box.width() / (metrics.capHeight * 0.68))));
}

struct Placed
{
    double left = 0;
    double right = 0;
    double center = 0;
    double width = 0; ///< usual, in cap heights
    bool startsWord = false;
    bool isQuote = false;
};

struct Step
{
    double cost = std::numeric_limits<double>::infinity();
    int symbols = 0;
    int segments = 0;
};

/// The cheapest way to walk through symbols and segments together.
class Alignment
{
public:
    Alignment(const std::vector<Placed> &symbols, const std::vector<QRect> &segments,
              const LetterMetrics &metrics)
        : m_symbols(symbols)
        , m_segments(segments)
        , m_capHeight(metrics.capHeight)
        , m_columns(int(segments.size()) + 1)
        , m_steps((symbols.size() + 1) * (segments.size() + 1))
    {
        for (const QRect &segment : segments)
            m_isMark.push_back(markOf(segment, metrics) != Mark::none);
        step(0, 0).cost = 0;
        for (int i = 0; i <= int(symbols.size()); ++i) {
            for (int j = 0; j <= int(segments.size()); ++j)
                extend(i, j);
        }
    }

    /// From the end to the start: how many symbols and segments belong together.
    std::vector<Step> path() const
    {
        std::vector<Step> result;
        int i = int(m_symbols.size());
        int j = int(m_segments.size());
        while (i > 0 || j > 0) {
            const Step &taken = m_steps[std::size_t(i) * m_columns + j];
            result.push_back(taken);
            i -= taken.symbols;
            j -= taken.segments;
        }
        std::reverse(result.begin(), result.end());
        return result;
    }

private:
    Step &step(int i, int j) { return m_steps[std::size_t(i) * m_columns + j]; }

    void offer(int i, int j, int symbols, int segments, double cost)
    {
        if (i + symbols > int(m_symbols.size()) || j + segments > int(m_segments.size()))
            return;
        Step &target = step(i + symbols, j + segments);
        const double total = step(i, j).cost + cost;
        if (total < target.cost)
            target = {total, symbols, segments};
    }

    void extend(int i, int j)
    {
        if (std::isinf(step(i, j).cost))
            return;
        offer(i, j, 1, 0, unseenCharacter);
        if (j < int(m_segments.size()))
            offer(i, j, 0, 1, m_isMark[j] ? unreadMark : unreadSegment);
        if (i == int(m_symbols.size()) || j == int(m_segments.size()) || !isNear(i, j))
            return;
        for (int n = 1; n <= mostShared && i + n <= int(m_symbols.size()); ++n) {
            if (!isNear(i + n - 1, j))
                break;
            offer(i, j, n, 1, shareCost(i, n, j));
        }
        for (int n = 2; n <= mostReadPieces && j + n <= int(m_segments.size()); ++n) {
            const QRect box = m_segments[j] | m_segments[j + n - 1];
            offer(i, j, 1, n,
                  distance(m_symbols[i].center, centerX(box))
                      + (m_symbols[i].isQuote ? extraStroke : extraPiece) * (n - 1)
                      + mismatch(m_symbols[i].width, box) + gapCost(i, j));
        }
    }

    bool isNear(int symbol, int segment) const
    {
        const double reach = widestDrift * m_capHeight;
        return m_symbols[symbol].right > m_segments[segment].left() - reach
            && m_symbols[symbol].left < m_segments[segment].right() + reach;
    }
    double distance(double a, double b) const
    {
        return std::min(std::abs(a - b) / m_capHeight, farthest) * distanceWeight;
    }
    double gapCost(int symbol, int segment) const
    {
        if (segment == 0)
            return 0;
        const double gap =
            (m_segments[segment].left() - m_segments[segment - 1].right() - 1) / m_capHeight;
        const bool isWrong = m_symbols[symbol].startsWord ? gap < wordGap : gap > widestRunGap;
        return isWrong ? gapWeight : 0.0;
    }
    /// Between what the characters need and what the ink has.
    double mismatch(double needed, const QRect &box) const
    {
        return std::max(0.0, std::abs(needed - box.width() / m_capHeight) - widthTolerance * needed)
            * runWidthWeight;
    }

    double shareCost(int first, int count, int segment) const
    {
        const QRect &box = m_segments[segment];
        if (count > 1 && box.width() < m_capHeight * narrowestRunPair)
            return std::numeric_limits<double>::infinity();
        double needed = 0.1 * (count - 1);
        for (int k = 0; k < count; ++k)
            needed += m_symbols[first + k].width;
        double cost = extraShare * (count - 1) + mismatch(needed, box) + gapCost(first, segment);
        double at = box.left();
        for (int k = 0; k < count; ++k) {
            const double part =
                box.width() * m_symbols[first + k].width / (needed - 0.1 * (count - 1));
            cost += distance(m_symbols[first + k].center, at + part / 2);
            at += part;
        }
        return cost;
    }

    const std::vector<Placed> &m_symbols;
    const std::vector<QRect> &m_segments;
    double m_capHeight;
    std::vector<bool> m_isMark;
    int m_columns;
    std::vector<Step> m_steps;
};

/// What is read as an em dash, but is narrower than any: two hyphens that have run together.
bool isTwoHyphens(const QString &text, const QRect &dash, const LetterMetrics &metrics)
{
    const double width = dash.width() / metrics.capHeight;
    return text == QStringLiteral("\u2014") && width >= 0.6 && width <= 1.15;
}

/// Ink whose shape names it. False where a character must be asked for. The foot of a Cyrillic
/// letter has the shape and the place of a full stop, so that unread ink beside such letters
/// (`isForeign`) tells nothing.
bool appendPlain(const std::vector<EngineSymbol> &symbols, std::size_t i,
                 const std::vector<QRect> &segments, std::size_t j, const Step &step,
                 const LetterMetrics &metrics, bool isForeign, std::vector<InkSymbol> &result)
{
    if (step.segments == 0 || (step.symbols == 0 && isForeign))
        return false;
    static const QString dashes = QStringLiteral("-~_=\u2014\u2013\u00ad\u00ab\u00bb");
    const bool isUnread = step.symbols == 0;
    const bool isTilde = !isUnread && symbols[i].text == QLatin1String("~") && step.segments == 1
        && segments[j].height() >= 2 && segments[j].width() < metrics.capHeight * 0.8;
    const bool isDashLike = isUnread || (dashes.contains(symbols[i].text) && !isTilde);
    const Mark mark = markOf(segments[j], metrics, !isUnread && isDashLike);
    for (int k = 1; k < step.segments; ++k) {
        if (markOf(segments[j + k], metrics, !isUnread && isDashLike) != mark)
            return false;
    }
    const double confidence = isUnread ? 50 : symbols[i].confidence;
    if (mark == Mark::dash && isDashLike) {
        for (int k = 0; k < step.segments; ++k) {
            const bool isLong =
                !isUnread && isTwoHyphens(symbols[i].text, segments[j + k], metrics);
            const int count = isLong ? 2 : 1;
            for (int n = 0; n < count; ++n)
                result.push_back({QStringLiteral("-"),
                                  sliceOf(segments[j + k], n, count),
                                  confidence,
                                  false,
                                  count,
                                  segments[j + k],
                                  {}});
        }
        return true;
    }
    if (mark == Mark::underscore && isDashLike) {
        for (int k = 0; k < step.segments; ++k) {
            const int count = underscoresIn(segments[j + k], metrics);
            for (int n = 0; n < count; ++n)
                result.push_back({QStringLiteral("_"),
                                  sliceOf(segments[j + k], n, count),
                                  confidence,
                                  false,
                                  count,
                                  segments[j + k],
                                  {}});
        }
        return true;
    }
    if (mark == Mark::dot && isUnread) {
        result.push_back({QStringLiteral("."), segments[j], confidence, false, 1, segments[j], {}});
        return true;
    }
    return false;
}

void appendRead(const std::vector<EngineSymbol> &symbols, std::size_t i,
                const std::vector<QRect> &segments, std::size_t j, const Step &step,
                std::vector<InkSymbol> &result)
{
    if (step.segments == 0)
        return;
    QRect box;
    for (int k = 0; k < step.segments; ++k)
        box |= segments[j + k];
    if (step.symbols == 0)
        result.push_back({{}, box, 0, false, 1, box, {}});
    for (int k = 0; k < step.symbols; ++k) {
        const EngineSymbol &symbol = symbols[i + k];
        result.push_back({symbol.text,
                          sliceOf(box, k, step.symbols),
                          symbol.confidence,
                          k > 0 && symbol.startsWord,
                          step.symbols,
                          box,
                          {}});
    }
}

} // namespace

QRect sliceOf(const QRect &box, int part, int parts)
{
    QRect result = box;
    result.setLeft(box.left() + box.width() * part / parts);
    result.setRight(box.left() + box.width() * (part + 1) / parts - 1);
    return result;
}

std::vector<InkSymbol> alignedSymbols(const std::vector<EngineSymbol> &symbols,
                                      const LineStrip &strip, const std::vector<QRect> &segments,
                                      const LetterMetrics &metrics)
{
    std::vector<Placed> placed;
    for (const EngineSymbol &symbol : symbols)
        placed.push_back({strip.pictureX(symbol.left), strip.pictureX(symbol.right),
                          strip.pictureX((symbol.left + symbol.right) / 2), usualWidth(symbol.text),
                          symbol.startsWord, symbol.text == QLatin1String("\"")});
    std::vector<InkSymbol> result;
    std::size_t i = 0;
    std::size_t j = 0;
    bool startsWord = false;
    const bool isForeign =
        std::any_of(symbols.begin(), symbols.end(),
                    [](const EngineSymbol &symbol) { return hasOtherThanLatin(symbol.text); });
    for (const Step &step : Alignment(placed, segments, metrics).path()) {
        // A dropped character leaves its word break to the next one.
        startsWord = startsWord || (step.symbols > 0 && symbols[i].startsWord);
        const std::size_t before = result.size();
        if (!appendPlain(symbols, i, segments, j, step, metrics, isForeign, result))
            appendRead(symbols, i, segments, j, step, result);
        if (result.size() > before) {
            result[before].startsWord = startsWord;
            startsWord = startsWord && result[before].text.isEmpty();
        }
        i += step.symbols;
        j += step.segments;
    }
    return result;
}

} // namespace tovek
