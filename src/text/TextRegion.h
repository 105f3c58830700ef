// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Geometry.h"

#include <QString>

namespace tovek {

/// One recognised word, without white space, and its place in the recognised image: coordinates
/// from 0 to 1, origin at the bottom left, y up.
struct TextRegion
{
    QString text;
    Rect boundingBox;

    bool operator==(const TextRegion &) const = default;
};

} // namespace tovek
