// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tovek {

/// How another program laid a picture out in memory. Four bytes a pixel, the last of which means
/// nothing.
struct FrameLayout
{
    enum class Order { bgr, rgb };

    std::size_t memory = 0; ///< bytes of the whole
    std::size_t offset = 0; ///< of the first row
    std::int64_t stride = 0; ///< from a row to the next one
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    Order order = Order::bgr;

    /// Whether all rows lie in that memory.
    bool isWhole() const
    {
        const std::size_t row = std::size_t(width) * 4;
        if (width == 0 || height == 0 || stride < std::int64_t(row) || offset > memory)
            return false;
        const std::size_t left = memory - offset;
        return left >= row && (left - row) / std::size_t(stride) >= height - 1;
    }
};

/// Makes rows without padding of a whole frame, each pixel the number 0xffRRGGBB.
inline void copyFrame(const FrameLayout &layout, const std::uint8_t *memory, std::uint8_t *to)
{
    for (std::uint32_t y = 0; y < layout.height; ++y) {
        const std::uint8_t *row = memory + layout.offset + std::size_t(layout.stride) * y;
        for (std::uint32_t x = 0; x < layout.width; ++x, to += 4) {
            std::uint8_t bytes[4];
            std::memcpy(bytes, row + std::size_t(x) * 4, 4);
            const bool isBgr = layout.order == FrameLayout::Order::bgr;
            const std::uint32_t pixel = 0xff000000u | std::uint32_t(bytes[isBgr ? 2 : 0]) << 16
                | std::uint32_t(bytes[1]) << 8 | bytes[isBgr ? 0 : 2];
            std::memcpy(to, &pixel, 4);
        }
    }
}

} // namespace tovek
