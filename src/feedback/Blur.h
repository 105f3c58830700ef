// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

namespace tovek {

/// A close likeness of a Gaussian blur (three box blurs). The deviation is in pixels of the image;
/// pixels beyond the edge count as those on the edge. Any 32 bit format; the result is
/// Format_ARGB32_Premultiplied with the device pixel ratio of the image. Any thread.
QImage blurred(const QImage &image, double deviation);

} // namespace tovek
