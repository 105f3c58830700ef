// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Geometry.h"

#include <QImage>

namespace tovek {

/// A picture with a size in points. The bitmap's pixels run from the top left; the number of
/// pixels per point is the quotient of the two widths. An image without a bitmap is empty: it has
/// a size at most. Copied freely, since QImage shares its pixels.
struct Image
{
    QImage bitmap; ///< Format_RGB32 for what was captured, never with a device pixel ratio
    Size size; ///< points

    bool isEmpty() const { return bitmap.isNull(); }
    /// Pixels per point; 1 for an image without a bitmap or without a width.
    double scale() const
    {
        return isEmpty() || size.width <= 0 ? 1.0 : bitmap.width() / size.width;
    }
};

} // namespace tovek
