// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

namespace tovek {

/// The picture blurred as by a Gaussian: three box blurs of the radius, in pixels. Beyond its edges
/// the picture goes on as its outermost pixels. The result is Format_RGB32.
QImage blurred(const QImage &image, int radius);

} // namespace tovek
