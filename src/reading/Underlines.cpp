// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/Underlines.h"

#include <algorithm>
#include <optional>

namespace tovek {

namespace {

/// In pixels.
constexpr int shortest = 14;
constexpr int thickest = 4;
constexpr int lowestText = 5;
constexpr int thinnestText = 3; ///< in the line's own height
constexpr int highestText = 60;
/// Rows without ink between a line and its text.
constexpr int widestLineGap = 4;
/// Of the line's length: what belongs to the line itself, what may hang into the row below it and
/// stand on it (the feet of letters that touch stand for strokes), and above how much of it there
/// must be text.
constexpr double ownShare = 0.8;
constexpr double crossingShare = 0.3;
constexpr double standingShare = 0.2;
constexpr double textShare = 0.5;
/// Of its strongest ink, and of its columns, but for its ends: strokes that cross it differ.
constexpr double evenInkShare = 0.7;
constexpr double unevenShare = 0.04;
/// In heights of the text: a syllable's level stroke, as in Korean, has more of the syllable below.
constexpr double belowLine = 0.4;
/// A letter has a foot like that too, but is not as much wider than high.
constexpr double leastRatio = 2.2;

class Underlines
{
public:
    explicit Underlines(InkMap &map) : m_map(map) { }

    void erase()
    {
        for (int y = 1; y < m_map.size.height(); ++y) {
            for (int x = 0; x < m_map.size.width();) {
                int end = x;
                while (end < m_map.size.width() && hasInk(end, y))
                    ++end;
                if (end - x >= shortest)
                    eraseIfLine(x, end, y);
                x = end + 1;
            }
        }
    }

private:
    bool hasInk(int x, int y) const { return m_map.at(x, y) >= faintestInk; }
    /// Of the columns from `from` to before `to`, 0 outside of the picture.
    double share(int from, int to, int y) const
    {
        if (y < 0 || y >= m_map.size.height())
            return 0;
        const auto *row = m_map.row(y);
        return double(std::count_if(row + from, row + to,
                                    [](std::uint8_t ink) { return ink >= faintestInk; }))
            / (to - from);
    }

    /// `top` is the first row of ink from above.
    void eraseIfLine(int from, int to, int top)
    {
        if (share(from, to, top - 1) > standingShare)
            return;
        int bottom = top;
        while (bottom - top < thickest && share(from, to, bottom + 1) >= ownShare)
            ++bottom;
        if (bottom - top >= thickest || share(from, to, bottom + 1) > crossingShare)
            return;
        if (!isEven(from, to, top, bottom))
            return;
        const int foot = textFoot(from, to, top);
        const int height = textHeight(from, to, foot);
        // The bars of an equals sign are as thick as each other.
        if (height < std::max(lowestText, (bottom - top + 1) * thinnestText) || height > highestText
            || to - from < (top - foot - 1 + height) * leastRatio
            || !hasInkIn(from, to, foot + 1 - height, top, textShare)
            || hasInkIn(from, to, bottom + 1, bottom + 1 + int(height * belowLine), crossingShare))
            return;
        for (int x = from; x < to; ++x) {
            const bool isCrossed =
                hasInk(x, top - 1) && bottom + 1 < m_map.size.height() && hasInk(x, bottom + 1);
            for (int y = top; !isCrossed && y <= bottom; ++y)
                m_map.contrast[std::size_t(y) * m_map.size.width() + x] = 0;
        }
    }

    /// Drawn in one stroke: level strokes of letters that touch are fainter where they meet.
    bool isEven(int from, int to, int top, int bottom) const
    {
        const auto strongest = [&](int x) {
            int ink = 0;
            for (int y = top; y <= bottom; ++y)
                ink = std::max(ink, int(m_map.at(x, y)));
            return ink;
        };
        int peak = 0;
        for (int x = from; x < to; ++x)
            peak = std::max(peak, strongest(x));
        int even = 0;
        for (int x = from; x < to; ++x)
            even += strongest(x) >= peak * evenInkShare;
        return even >= (to - from) - 2 - int((to - from) * unevenShare);
    }

    /// The last row of what stands above the line, which may touch it.
    int textFoot(int from, int to, int top) const
    {
        int y = top - 1;
        while (y > 0 && top - y <= widestLineGap && share(from, to, y) == 0)
            --y;
        return y;
    }
    int textHeight(int from, int to, int foot) const
    {
        int y = foot;
        while (y >= 0 && foot - y <= highestText && share(from, to, y) > 0)
            --y;
        return foot - y;
    }
    /// In so much of the columns, between two rows.
    bool hasInkIn(int from, int to, int top, int bottom, double least) const
    {
        int columns = 0;
        for (int x = from; x < to; ++x) {
            bool isHere = false;
            for (int y = top; y < std::min(bottom, m_map.size.height()) && !isHere; ++y)
                isHere = hasInk(x, y);
            columns += isHere;
        }
        return columns > (to - from) * least;
    }

    InkMap &m_map;
};

} // namespace

void eraseUnderlines(InkMap &map)
{
    Underlines(map).erase();
}

} // namespace tovek
