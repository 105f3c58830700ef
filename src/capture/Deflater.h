// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tovek {

/// A way of compressing one strip of a picture, so that strips compressed on several cores can be
/// put one behind the other. Any thread; the state lives for one call.
struct Deflater
{
    const char *name;
    /// Appends the raw deflate form of the data, which refers to nothing outside it. Unless it is
    /// the last, it ends on a byte boundary and leaves the stream open: the next one may follow.
    bool (*compress)(const uint8_t *data, size_t size, bool isLast, std::vector<uint8_t> &out);
    /// Adler-32 of the data alone.
    uint32_t (*adler32)(const uint8_t *data, size_t size);
    /// CRC-32 as in PNG chunks, continued from an earlier one (0 at the start).
    uint32_t (*crc32)(uint32_t crc, const uint8_t *data, size_t size);
};

/// The fastest of this build.
const Deflater &fastestDeflater();
/// zlib, which is in every build.
const Deflater &zlibDeflater();

/// The Adler-32 of two pieces of data one behind the other.
uint32_t adler32Combine(uint32_t first, uint32_t second, size_t secondSize);

} // namespace tovek
