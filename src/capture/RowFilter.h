// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>

namespace tovek {

/// The predictors of PNG that pay here, under their numbers in the format. Paeth is left out: it
/// costs more time than its bytes are worth beside `average`.
enum class RowFilter : uint8_t { none = 0, sub = 1, up = 2, average = 3 };

/// The filter for a group of rows, judged by a few of them. Screens drawn by programs repeat
/// their pixels exactly and compress best unfiltered; pictures do not, and the predictor with the
/// smallest differences wins. `rows` are `rowCount` rows of `rowBytes` bytes, `stride` bytes
/// apart, of `pixelBytes` bytes a pixel.
RowFilter chooseFilter(const uint8_t *rows, size_t rowCount, size_t stride, size_t rowBytes,
                       size_t pixelBytes);

/// Writes the filter's number and the filtered row: `rowBytes` + 1 bytes. `above` is the row
/// before, unfiltered; zeros before the first.
void filterRow(RowFilter filter, const uint8_t *row, const uint8_t *above, size_t rowBytes,
               size_t pixelBytes, uint8_t *out);

} // namespace tovek
