// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QRect>
#include <QSize>

#include <cstdint>
#include <vector>

class QImage;

namespace tovek {

/// Fainter contrasts cannot be seen, and are noise.
inline constexpr int faintestInk = 20;

/// How strongly each pixel stands out from the background around it, whatever the colours: dark on
/// light and light on dark give the same map. 0 is background; lines, frames and everything else
/// that lies flat over a long stretch is background too.
struct InkMap
{
    QSize size;
    std::vector<std::uint8_t> contrast; ///< row by row from the top left
    std::vector<QRect> panels{}; ///< see Panels.h

    const std::uint8_t *row(int y) const { return contrast.data() + std::size_t(y) * size.width(); }
    std::uint8_t at(int x, int y) const { return row(y)[x]; }
};

/// The image in native pixels. An empty image gives an empty map.
InkMap inkMapOf(const QImage &image);

/// A patch of connected ink.
struct InkPatch
{
    QRect box;
    int area = 0; ///< pixels
    int peak = 0; ///< the strongest contrast in it
    bool operator==(const InkPatch &) const = default;
};

/// The connected patches of pixels with a contrast of at least `threshold`, from top to bottom.
std::vector<InkPatch> inkPatches(const InkMap &map, int threshold);

} // namespace tovek
