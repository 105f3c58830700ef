// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Image.h"

#include <QByteArray>

namespace tovek {

struct Deflater;

struct PngOptions
{
    double dotsPerInch = 0; ///< written as the pixel density; 0 writes none
    unsigned threads = 0; ///< 0: as many as there are cores
    const Deflater *deflater = nullptr; ///< null: the fastest of this build
};

/// A lossless PNG of 8 bits per sample: RGB, or RGBA when the format of the image has an alpha
/// channel. Empty when the image is null or memory runs out. Any thread; the calling one works
/// too, and nothing (threads, buffers) is left when it returns.
///
/// The rows are cut into strips that all cores filter and compress, each into a chunk of its own;
/// a strip ends with a full flush, so that the chunks together are one valid zlib stream. One
/// filter is chosen for a strip. ISA-L at level 1 takes about half the time of libdeflate at its
/// fastest for the same size (bench/bench_output.cpp measures it); libdeflate also closes every
/// stream it writes, so that its strips could not be joined. zlib takes over where ISA-L does not
/// exist.
QByteArray encodePng(const QImage &image, const PngOptions &options = {});

/// The density to note for the image: 72 for one pixel a point, in steps of a tenth of the scale.
/// 0 for an image without a size.
double dotsPerInch(const Image &image);

} // namespace tovek
