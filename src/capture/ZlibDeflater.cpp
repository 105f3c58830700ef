// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/Deflater.h"

#include <zlib.h>

namespace tovek {

namespace {

constexpr int rawWindowBits = -15;
constexpr size_t flushBytes = 16;

bool compress(const uint8_t *data, size_t size, bool isLast, std::vector<uint8_t> &out)
{
    z_stream stream{};
    if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, rawWindowBits, 8, Z_DEFAULT_STRATEGY)
        != Z_OK)
        return false;
    const size_t start = out.size();
    const size_t bound = deflateBound(&stream, uLong(size)) + flushBytes;
    out.resize(start + bound);
    stream.next_in = const_cast<uint8_t *>(data); // the field is not const for old programs
    stream.avail_in = uInt(size);
    stream.next_out = out.data() + start;
    stream.avail_out = uInt(bound);
    const int result = deflate(&stream, isLast ? Z_FINISH : Z_FULL_FLUSH);
    const bool isWhole =
        stream.avail_in == 0 && stream.avail_out > 0 && result == (isLast ? Z_STREAM_END : Z_OK);
    out.resize(start + bound - stream.avail_out);
    deflateEnd(&stream);
    return isWhole;
}

uint32_t adler(const uint8_t *data, size_t size)
{
    return uint32_t(adler32_z(adler32(0, nullptr, 0), data, size));
}

uint32_t crc(uint32_t before, const uint8_t *data, size_t size)
{
    return uint32_t(crc32_z(before, data, size));
}

} // namespace

const Deflater &zlibDeflater()
{
    static constexpr Deflater deflater{"zlib", compress, adler, crc};
    return deflater;
}

#ifndef TOVEK_WITH_ISAL
const Deflater &fastestDeflater()
{
    return zlibDeflater();
}
#endif

uint32_t adler32Combine(uint32_t first, uint32_t second, size_t secondSize)
{
    return uint32_t(adler32_combine(first, second, z_off_t(secondSize)));
}

} // namespace tovek
