// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/OverlaySurface.h"

class QPainter;

namespace tovek {

/// Paints what a surface that cannot draw lists itself must show, and the backdrop of child
/// widgets: the part of the list inside `region`. The painter's units are logical pixels with y
/// down; `frozen` is in native pixels, `scale` of them to a logical pixel.
void paintDisplayList(QPainter &painter, const DisplayList &list, const QImage &frozen,
                      double scale, const QRegion &region);

/// The same into an image of exactly `native`, in native pixels; black beside the frozen picture.
QImage renderDisplayList(const DisplayList &list, const QImage &frozen, const QRect &native);

} // namespace tovek
