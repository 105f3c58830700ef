// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "FuzzInput.h"
#include "platform/portal/PngReader.h"

#include <algorithm>
#include <span>
#include <zlib.h>

namespace {

constexpr qint64 mostBytes = 1 << 22;

void putNumber(uint8_t *at, uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        at[i] = uint8_t(value >> (24 - 8 * i));
}

/// Sums what stands where chunks would: nobody finds the right sums by chance.
std::vector<uint8_t> withRightSums(const uint8_t *data, size_t size)
{
    std::vector<uint8_t> png(data, data + size);
    for (size_t at = 8; at + 12 <= size;) {
        const size_t length = size_t(png[at]) << 24 | size_t(png[at + 1]) << 16
            | size_t(png[at + 2]) << 8 | png[at + 3];
        if (length > size - at - 12)
            break;
        putNumber(&png[at + 8 + length], uint32_t(crc32(0, &png[at + 4], uInt(length + 4))));
        at += 12 + length;
    }
    return png;
}

} // namespace

/// One byte is how the file grows; the rest is the file. What is read of it is what another reader
/// reads, however it came.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace tovek;
    if (size < 1)
        return 0;
    const std::vector<uint8_t> png = withRightSums(data + 1, size - 1);
    PngReader whole(mostBytes);
    whole.add(png);
    PngReader growing(mostBytes);
    const size_t step = 1 + data[0];
    for (size_t at = 0; at < png.size(); at += step)
        growing.add(std::span(png).subspan(at, std::min(step, png.size() - at)));
    require(growing.state() == whole.state());
    if (whole.state() != PngReader::State::whole)
        return 0;
    require(growing.image() == whole.image());
    const QImage other = QImage::fromData(png.data(), int(png.size()), "PNG");
    require(other.isNull() || other.convertToFormat(QImage::Format_RGB32) == whole.image());
    return 0;
}
