// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QImage>

#include <cstdint>

namespace tovek {

/// What a test makes a PNG of, with whatever it wants to be wrong.
struct PngKind
{
    uint32_t width = 0, height = 0;
    uint8_t bits = 8, colors = 6, packing = 0, filters = 0, interlacing = 0;
};

QByteArray pngSignature();
/// With its length and its sum.
QByteArray pngChunk(const char *type, const QByteArray &body);
QByteArray pngHeader(const PngKind &kind);
/// The rows of an image, each with a filter and its number before it: filter y % 5 in row y, or the
/// one that is given. Pixels of 3 or 4 bytes.
QByteArray pngRows(const QImage &image, size_t pixelBytes, int filter = -1);
QByteArray deflated(const QByteArray &bytes);
/// All of it, the packed rows in chunks of this size.
QByteArray pngOf(const QImage &image, size_t pixelBytes, int filter = -1, qsizetype chunk = 8192);

} // namespace tovek
