// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/Deflater.h"

#include <isa-l/crc.h>
#include <isa-l/igzip_lib.h>
#include <memory>

namespace tovek {

namespace {

/// Level 1 is the fastest that adapts its codes to the data; level 0 doubles noisy pictures.
constexpr uint32_t level = 1;
constexpr uint32_t levelBytes = ISAL_DEF_LVL1_DEFAULT;

struct State
{
    isal_zstream stream;
    uint8_t buffer[levelBytes];
};

bool isalCompress(const uint8_t *data, size_t size, bool isLast, std::vector<uint8_t> &out)
{
    // Left uninitialised: isal_deflate_init sets what is read.
    const std::unique_ptr<State> state(new State);
    isal_zstream &stream = state->stream;
    isal_deflate_init(&stream);
    stream.level = level;
    stream.level_buf = state->buffer;
    stream.level_buf_size = levelBytes;
    stream.flush = isLast ? NO_FLUSH : FULL_FLUSH;
    stream.end_of_stream = isLast ? 1 : 0;
    stream.next_in = const_cast<uint8_t *>(data); // the field is not const, the data is kept
    stream.avail_in = uint32_t(size);

    const size_t start = out.size();
    // Stored blocks bound the growth to 5 bytes in 64 KiB; the rest is for headers.
    const size_t bound = size + size / 1024 + 1024;
    out.resize(start + bound);
    stream.next_out = out.data() + start;
    stream.avail_out = uint32_t(bound);
    const int result = isal_deflate(&stream);
    out.resize(start + bound - stream.avail_out);
    return result == COMP_OK && stream.avail_in == 0 && stream.avail_out > 0;
}

uint32_t isalAdler(const uint8_t *data, size_t size)
{
    return isal_adler32(1, data, size);
}

uint32_t isalCrc(uint32_t before, const uint8_t *data, size_t size)
{
    return crc32_gzip_refl(before, data, size);
}

} // namespace

const Deflater &fastestDeflater()
{
    static constexpr Deflater deflater{"ISA-L", isalCompress, isalAdler, isalCrc};
    return deflater;
}

} // namespace tovek
