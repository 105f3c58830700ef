// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/Backticks.h"

#include "reading/InkSegments.h"

#include <algorithm>
#include <utility>

namespace tovek {

namespace {

/// In cap heights. Accents are lower, asterisks higher, dashes flatter.
constexpr double leastAboveLine = 0.5;
constexpr double leastHeight = 0.1;
constexpr double mostHeight = 0.42;
constexpr double leastWidth = 0.12;
constexpr double mostWidth = 0.5;
/// How far its lower half lies to the right of the upper one, in widths and in pixels: marks that
/// stand upright differ by the noise of a picture.
constexpr double leastLean = 0.2;
constexpr double leastLeanPixels = 0.4;
/// Source and markup have them one by one, in pairs, and three for a block.
constexpr std::size_t mostTogether = 3;
/// What a shape tells by itself is sure enough to tell about other places as well.
constexpr double sureOfShape = 95;

/// A unit's pixels.
struct Ink
{
    const std::vector<std::uint8_t> &pixels;
    int width = 0;

    int height() const { return int(pixels.size()) / width; }
    int at(int x, int y) const { return pixels[std::size_t(y) * width + x]; }
};

/// Of the ink in some rows and columns; nothing without ink.
std::optional<double> centerOf(const Ink &ink, const QRect &part)
{
    double sum = 0;
    double all = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            sum += double(ink.at(x, y)) * x;
            all += ink.at(x, y);
        }
    }
    return all > 0 ? std::optional(sum / all) : std::nullopt;
}

/// The parts between columns without a stroke, without the rows above and below that have none.
std::vector<QRect> partsOf(const Ink &ink)
{
    std::vector<QRect> parts;
    QRect part;
    for (int x = 0; x <= ink.width; ++x) {
        int top = ink.height();
        int bottom = -1;
        for (int y = 0; x < ink.width && y < ink.height(); ++y) {
            if (ink.at(x, y) >= strokeInk) {
                top = std::min(top, y);
                bottom = y;
            }
        }
        if (bottom >= 0) {
            part |= QRect(x, top, 1, bottom - top + 1);
        } else if (part.isValid()) {
            parts.push_back(part);
            part = {};
        }
    }
    return parts;
}

bool isBacktick(const Ink &ink, const QRect &part, int top, const LetterMetrics &metrics)
{
    const double cap = metrics.capHeight;
    const double above = metrics.baseline - (top + part.bottom() + 1);
    if (above < cap * leastAboveLine || part.height() < std::max(2.0, cap * leastHeight)
        || part.height() > cap * mostHeight + 1 || part.width() < std::max(2.0, cap * leastWidth)
        || part.width() > cap * mostWidth + 1)
        return false;
    QRect upper = part;
    upper.setHeight(part.height() / 2);
    QRect lower = part;
    lower.setTop(part.bottom() + 1 - upper.height());
    const auto from = centerOf(ink, upper);
    const auto to = centerOf(ink, lower);
    return from && to && *to - *from > std::max(leastLeanPixels, leastLean * part.width());
}

/// How many backticks a unit is; 0 when it is something else.
std::size_t backticksIn(const InkSymbol &first, const LetterMetrics &metrics)
{
    if (first.glyph.empty() || first.unit.isEmpty())
        return 0;
    const Ink ink{first.glyph, first.unit.width()};
    const std::vector<QRect> parts = partsOf(ink);
    const bool areAll = std::all_of(parts.begin(), parts.end(), [&](const QRect &part) {
        return isBacktick(ink, part, first.unit.top(), metrics);
    });
    return areAll && parts.size() <= mostTogether ? parts.size() : 0;
}

bool isMark(const InkSymbol &symbol)
{
    return std::none_of(symbol.text.begin(), symbol.text.end(),
                        [](QChar c) { return c.isLetterOrNumber(); });
}

/// Some fonts have opening quotes that lean as a backtick does. Such a quote is closed by one that
/// does not.
bool isClosedAsQuote(const std::vector<InkSymbol> &symbols, std::size_t end)
{
    static const QString closing = QStringLiteral("\u2019\u201d");
    return std::any_of(symbols.begin() + std::ptrdiff_t(end), symbols.end(),
                       [](const InkSymbol &symbol) {
                           return !symbol.text.isEmpty() && closing.contains(symbol.text);
                       });
}

} // namespace

void nameBackticks(std::vector<InkSymbol> &symbols, const LetterMetrics &metrics)
{
    static const QString opening = QStringLiteral("\u2018\u201c");
    // From the right, so that a closing quote that is a backtick closes none.
    for (std::size_t end = symbols.size(); end > 0;) {
        std::size_t from = end - 1;
        while (from > 0 && symbols[from - 1].unit == symbols[end - 1].unit)
            --from;
        const std::size_t next = std::exchange(end, from);
        const InkSymbol first = symbols[from];
        const bool areMarks = std::all_of(symbols.begin() + std::ptrdiff_t(from),
                                          symbols.begin() + std::ptrdiff_t(next), isMark);
        const int count = areMarks ? int(backticksIn(first, metrics)) : 0;
        const bool isQuote =
            !first.text.isEmpty() && opening.contains(first.text) && isClosedAsQuote(symbols, next);
        if (count == 0 || isQuote)
            continue;
        std::vector<InkSymbol> backticks(std::size_t(count), first);
        for (int i = 0; i < count; ++i) {
            InkSymbol &backtick = backticks[std::size_t(i)];
            backtick.text = QStringLiteral("`");
            backtick.box = sliceOf(first.unit, i, count);
            backtick.confidence = std::max(first.confidence, sureOfShape);
            backtick.shared = count;
            if (i > 0) {
                backtick.startsWord = false;
                backtick.glyph.clear();
            }
        }
        symbols.erase(symbols.begin() + std::ptrdiff_t(from),
                      symbols.begin() + std::ptrdiff_t(next));
        symbols.insert(symbols.begin() + std::ptrdiff_t(from), backticks.begin(), backticks.end());
    }
}

} // namespace tovek
