// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/GlyphView.h"

#include <algorithm>
#include <cmath>

namespace tovek {

namespace {

constexpr double viewCapRows = 14;
constexpr double viewBaselineRow = 20;
/// Of the shape's values: beyond it the net need not tell sizes apart.
constexpr float largestShape = 4;

/// A stretch of the view's pixels in one direction: which of the ink's they cover, and how much.
struct Cover
{
    int first = 0;
    std::vector<float> shares;
};

std::array<Cover, GlyphNet::side> coversOf(double origin, double step, int length)
{
    std::array<Cover, GlyphNet::side> covers;
    for (int i = 0; i < GlyphNet::side; ++i) {
        const double from = std::max(origin + i * step, 0.0);
        const double to = std::min(origin + (i + 1) * step, double(length));
        covers[std::size_t(i)].first = int(from);
        for (int at = int(from); at < to; ++at)
            covers[std::size_t(i)].shares.push_back(
                float((std::min(to, at + 1.0) - std::max(from, double(at))) / step));
    }
    return covers;
}

} // namespace

GlyphNet::Glyph glyphView(const std::vector<std::uint8_t> &ink, const QRect &box,
                          const LetterMetrics &metrics)
{
    const double cap = std::max(metrics.capHeight, 1.0);
    const double step = cap / viewCapRows;
    const auto across = coversOf((box.width() - GlyphNet::side * step) / 2, step, box.width());
    const auto down =
        coversOf(metrics.baseline - box.top() - viewBaselineRow * step, step, box.height());
    GlyphNet::Glyph glyph;
    for (std::size_t row = 0; row < down.size(); ++row) {
        for (std::size_t column = 0; column < across.size(); ++column) {
            float sum = 0;
            for (std::size_t y = 0; y < down[row].shares.size(); ++y) {
                const std::uint8_t *from = ink.data()
                    + (std::size_t(down[row].first) + y) * std::size_t(box.width())
                    + across[column].first;
                float line = 0;
                for (std::size_t x = 0; x < across[column].shares.size(); ++x)
                    line += across[column].shares[x] * float(from[x]);
                sum += line * down[row].shares[y];
            }
            glyph.ink[row * GlyphNet::side + column] =
                std::uint8_t(std::lround(std::min(sum, 255.0F)));
        }
    }
    glyph.shape = {float(metrics.xHeight / cap), std::min(float(box.width() / cap), largestShape),
                   float(1 / cap)};
    return glyph;
}

} // namespace tovek
