// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>

namespace tovek {

/// The colour (0xffRRGGBB) of one pixel of the test picture: soft gradients with grain, as in a
/// photograph. Neighbouring pixels differ, so that a picture shifted by one pixel is not the same.
constexpr uint32_t pictureColor(uint32_t x, uint32_t y)
{
    uint32_t hash = x * 0x9e3779b1u ^ y * 0x85ebca6bu;
    hash = (hash ^ hash >> 15) * 0x2c1b3c6du;
    hash = (hash ^ hash >> 12) * 0x297a2d39u;
    hash ^= hash >> 15;
    const uint32_t red = (x / 4 + (hash & 31)) & 255;
    const uint32_t green = (y / 3 + (hash >> 8 & 31)) & 255;
    const uint32_t blue = ((x + y) / 6 + (hash >> 16 & 31)) & 255;
    return 0xff000000u | red << 16 | green << 8 | blue;
}

} // namespace tovek
