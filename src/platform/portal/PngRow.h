// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>

namespace tovek {

/// Bytes behind a row that `unfilterRow` and `rowToRgb32` may read; what is there does not matter.
inline constexpr size_t pngRowPadding = 4;

/// Takes a row's filter of PNG off, in place. `above` is the row before, without its filter; zeros
/// before the first. Pixels of 3 or 4 bytes. False, changing nothing, where PNG has no such filter.
[[nodiscard]] bool unfilterRow(uint8_t filter, uint8_t *row, const uint8_t *above, size_t rowBytes,
                               size_t pixelBytes);

/// Red, green, blue and, in 4 bytes, an opacity that is dropped, to pixels of Format_RGB32.
void rowToRgb32(const uint8_t *row, size_t pixels, size_t pixelBytes, uint32_t *out);

} // namespace tovek
