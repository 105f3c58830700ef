// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QImage>

namespace tovek::bench {

/// The pixels of an opaque picture compressed by libdeflate at its fastest level on all cores,
/// with the same filters as the encoder and in the same frame. What libdeflate writes cannot be
/// joined to one stream, so no reader takes the result: it is the time and the size to compare
/// with.
QByteArray floorPng(const QImage &image);

} // namespace tovek::bench
