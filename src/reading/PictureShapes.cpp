// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/PictureShapes.h"

#include "reading/InkSegments.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace tovek {

namespace {

/// The most characters that the engine reads into an icon.
constexpr std::size_t mostInIcon = 3;
/// Characters from here on may be squares themselves.
constexpr char16_t firstPictograph = 0x2E80;
constexpr int leastSquare = 6;
constexpr int leastTriangle = 4;
/// Of half the width.
constexpr double solidRadius = 0.8;

/// The unit's ink as strokes.
class Strokes
{
public:
    explicit Strokes(const InkSymbol &symbol)
        : m_glyph(symbol.glyph)
        , m_width(symbol.unit.width())
        , m_height(symbol.unit.height())
    {
    }
    bool at(int x, int y) const { return m_glyph[std::size_t(y) * m_width + x] >= strokeInk; }
    bool isSquare() const
    {
        return std::min(m_width, m_height) >= leastSquare && m_width * 4 >= m_height * 3
            && m_width * 3 <= m_height * 4;
    }
    double filled() const
    {
        const auto count =
            std::count_if(m_glyph.begin(), m_glyph.end(), [](int ink) { return ink >= strokeInk; });
        return double(count) / double(m_glyph.size());
    }
    /// Ink along the whole of every side; round letters leave the corners empty.
    bool hasAllSides() const
    {
        int top = 0;
        int bottom = 0;
        int left = 0;
        int right = 0;
        for (int x = 0; x < m_width; ++x) {
            top += at(x, 0);
            bottom += at(x, m_height - 1);
        }
        for (int y = 0; y < m_height; ++y) {
            left += at(0, y);
            right += at(m_width - 1, y);
        }
        return std::min(top, bottom) * 10 >= m_width * 9
            && std::min(left, right) * 10 >= m_height * 9;
    }

    /// Ink in all of the middle, as in a bullet or a point that shows a state; letters have
    /// hollows.
    bool isSolid() const
    {
        for (int y = 0; y < m_height; ++y) {
            for (int x = 0; x < m_width; ++x) {
                const double dx = (x + 0.5) * 2 / m_width - 1;
                const double dy = (y + 0.5) * 2 / m_height - 1;
                if (dx * dx + dy * dy < solidRadius * solidRadius && !at(x, y))
                    return false;
            }
        }
        return true;
    }

    /// Full and pointed, as the arrows that unfold something: every row and every column is one
    /// stretch, about half of the box is filled. A letter's strokes leave more empty or less.
    bool isTriangle() const
    {
        const double share = filled();
        return std::min(m_width, m_height) >= leastTriangle && share > 0.42 && share < 0.68
            && hasWholeLines(m_height, m_width, [this](int y, int x) { return at(x, y); })
            && hasWholeLines(m_width, m_height, [this](int x, int y) { return at(x, y); });
    }

private:
    /// The lines hold one stretch each, and it grows and shrinks at most once.
    template <typename At>
    static bool hasWholeLines(int lines, int length, At at)
    {
        // The arm of an L is a step, the side of an arrow is not.
        const int steepest = std::max(2, (length * 2 + lines - 1) / lines);
        int before = 0;
        bool shrinks = false;
        for (int i = 0; i < lines; ++i) {
            int first = length;
            int last = -1;
            int count = 0;
            for (int k = 0; k < length; ++k) {
                if (!at(i, k))
                    continue;
                first = std::min(first, k);
                last = k;
                ++count;
            }
            const bool isStep = i > 0 && std::abs(count - before) > steepest;
            if (count == 0 || count != last - first + 1 || (shrinks && count > before) || isStep)
                return false;
            shrinks = shrinks || count < before;
            before = count;
        }
        return true;
    }

    const std::vector<std::uint8_t> &m_glyph;
    int m_width;
    int m_height;
};

bool isSquare(const InkSymbol &symbol)
{
    if (symbol.glyph.empty() || (!symbol.text.isEmpty() && symbol.text.at(0) >= firstPictograph))
        return false;
    const Strokes strokes(symbol);
    return strokes.isSquare() && (strokes.filled() > 0.95 || strokes.hasAllSides());
}

/// Or an arrow. A small letter in bold type may be as solid, but does not stand by itself.
bool isBullet(const InkSymbol &symbol)
{
    if (symbol.glyph.empty())
        return false;
    const Strokes strokes(symbol);
    return (strokes.isSquare() && strokes.isSolid()) || strokes.isTriangle();
}

/// Where the upper and lower edge of a character may lie, in cap heights above the baseline.
struct Extent
{
    double lowestTop, highestTop, lowestBottom, highestBottom;
};

std::optional<Extent> extentOf(QChar c, double x)
{
    static const QString small = QStringLiteral("acemnorsuvwxz");
    static const QString hanging = QStringLiteral("gpqy");
    static const QString tall = QStringLiteral("bdhkl!?%&#");
    static const QString flat = QStringLiteral("=~+<>*");
    if (small.contains(c))
        return Extent{x - 0.12, x + 0.15, -0.12, 0.12};
    if (hanging.contains(c))
        return Extent{x - 0.12, x + 0.15, -0.5, -0.1};
    if ((c.isUpper() && c != 'Q' && c != 'J') || c.isDigit() || tall.contains(c))
        return Extent{0.85, 1.3, -0.15, 0.15};
    if (flat.contains(c))
        return Extent{0.3, 1.1, -0.15, 0.7};
    if (c == 'Q' || c == '@')
        return Extent{0.7, 1.2, -0.4, 0.12};
    return std::nullopt;
}

bool standsOnLine(const InkSymbol &symbol, const LetterMetrics &metrics)
{
    if (symbol.text.size() != 1 || symbol.shared > 1)
        return true;
    const double cap = metrics.capHeight;
    const auto extent = extentOf(symbol.text.at(0), metrics.xHeight / cap);
    if (!extent)
        return true;
    // Edges lie between pixels.
    const double slack = 0.6 / cap;
    const double top = (metrics.baseline - symbol.box.top()) / cap;
    const double bottom = (metrics.baseline - symbol.box.bottom() - 1) / cap;
    return top >= extent->lowestTop - slack && top <= extent->highestTop + slack
        && bottom >= extent->lowestBottom - slack && bottom <= extent->highestBottom + slack;
}

void erase(std::vector<InkSymbol> &symbols, std::size_t from, std::size_t to)
{
    const bool startsWord =
        std::any_of(symbols.begin() + std::ptrdiff_t(from), symbols.begin() + std::ptrdiff_t(to),
                    [](const InkSymbol &symbol) { return symbol.startsWord; });
    symbols.erase(symbols.begin() + std::ptrdiff_t(from), symbols.begin() + std::ptrdiff_t(to));
    if (from < symbols.size() && startsWord)
        symbols[from].startsWord = true;
}

} // namespace

void erasePictures(std::vector<InkSymbol> &symbols, const LetterMetrics &metrics)
{
    for (std::size_t i = 0; i < symbols.size();) {
        std::size_t end = i + 1;
        while (end < symbols.size() && symbols[end].unit == symbols[i].unit)
            ++end;
        const bool isAlone =
            (i == 0 || symbols[i].startsWord) && (end == symbols.size() || symbols[end].startsWord);
        const bool isPicture = isSquare(symbols[i]) || (isAlone && isBullet(symbols[i]));
        if (isPicture && symbols[i].unit.height() > metrics.xHeight * 0.5)
            erase(symbols, i, end);
        else
            i = end;
    }
    if (!metrics.isCertain)
        return;
    const auto eraseIcon = [&](std::size_t from, std::size_t to) {
        const bool isShort = to - from <= mostInIcon && to - from < symbols.size();
        const bool isOff = std::none_of(
            symbols.begin() + std::ptrdiff_t(from), symbols.begin() + std::ptrdiff_t(to),
            [&](const InkSymbol &symbol) { return standsOnLine(symbol, metrics); });
        if (isShort && isOff)
            erase(symbols, from, to);
    };
    const auto isStart = [](const InkSymbol &symbol) { return symbol.startsWord; };
    if (symbols.empty())
        return;
    const auto second = std::find_if(symbols.begin() + 1, symbols.end(), isStart);
    eraseIcon(0, std::size_t(second - symbols.begin()));
    if (symbols.empty())
        return;
    const auto last = std::find_if(symbols.rbegin(), symbols.rend(), isStart);
    if (last != symbols.rend())
        eraseIcon(std::size_t(symbols.rend() - last) - 1, symbols.size());
}

} // namespace tovek
