// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Image.h"

#include <optional>

namespace tovek {

/// A rectangle in native pixels with y growing upwards from the bottom of the screen: a selection
/// before it is flipped to the rows of an image.
struct PixelRect
{
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    static PixelRect fromPoints(const Rect &rect, double scale)
    {
        return {rect.x * scale, rect.y * scale, rect.width * scale, rect.height * scale};
    }
    bool operator==(const PixelRect &) const = default;
};

/// The whole pixels of an image with `imageSize` that the rectangle covers, y down, clipped to the
/// image; empty when none is left. Each edge goes to the nearest pixel boundary: a selection's
/// edges come from whole native pixels, and dividing and multiplying by a scale like 1.25 must not
/// lose one of them to a rounding error.
QRect cropRect(const PixelRect &rect, QSize imageSize);

/// Cuts the rectangle out of the screenshot. The result's size in points is `points`, or the
/// rectangle's size in pixels without it. Absent when no pixel is left,
/// and when there is no memory for them.
///
/// A cut of at least half of the screenshot shares its pixels (and keeps them alive); copying that
/// many costs more than anything else between the selection and the result.
[[nodiscard]] std::optional<Image> crop(const Image &screenshot, const PixelRect &rect,
                                        std::optional<Size> points = std::nullopt);

} // namespace tovek
