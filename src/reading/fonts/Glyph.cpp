// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/fonts/Glyph.h"

#include "reading/InkSegments.h"

#include <algorithm>
#include <cstdlib>

namespace tovek {

Glyph trimmed(const Glyph &glyph)
{
    const int peak = glyph.isEmpty() ? 0 : *std::max_element(glyph.ink.begin(), glyph.ink.end());
    if (peak == 0)
        return {};
    QRect kept;
    for (int y = glyph.box.top(); y <= glyph.box.bottom(); ++y) {
        for (int x = glyph.box.left(); x <= glyph.box.right(); ++x) {
            if (glyph.at(x, y) * 255 >= strokeInk * peak)
                kept |= QRect(x, y, 1, 1);
        }
    }
    Glyph result{kept, {}};
    result.ink.reserve(std::size_t(kept.width()) * kept.height());
    for (int y = kept.top(); y <= kept.bottom(); ++y) {
        for (int x = kept.left(); x <= kept.right(); ++x)
            result.ink.push_back(std::uint8_t(glyph.at(x, y) * 255 / peak));
    }
    return result;
}

double inkDistance(const Glyph &a, const Glyph &b)
{
    const QSize size = a.box.size().expandedTo(b.box.size());
    int difference = 0;
    int sum = 0;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const auto inkOf = [x, y](const Glyph &glyph) {
                return x < glyph.box.width() && y < glyph.box.height()
                    ? int(glyph.ink[std::size_t(y) * glyph.box.width() + x])
                    : 0;
            };
            difference += std::abs(inkOf(a) - inkOf(b));
            sum += inkOf(a) + inkOf(b);
        }
    }
    return sum > 0 ? double(difference) / sum : 0;
}

double inkDistance(const std::uint8_t *a, const std::uint8_t *b, std::size_t size)
{
    unsigned difference = 0;
    unsigned sum = 0;
    for (std::size_t i = 0; i < size; ++i) {
        difference += unsigned(std::abs(int(a[i]) - int(b[i])));
        sum += unsigned(a[i]) + b[i];
    }
    return sum > 0 ? double(difference) / sum : 0;
}

} // namespace tovek
