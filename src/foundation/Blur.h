// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

namespace tovek {

/// A close likeness of a Gaussian blur (three box blurs). The deviation is in pixels of the image;
/// pixels beyond the edge count as those on the edge. Any format; the result is Format_RGB32 for an
/// image without an alpha channel, else Format_ARGB32_Premultiplied. Any thread.
QImage blurred(const QImage &image, double deviation);

} // namespace tovek
