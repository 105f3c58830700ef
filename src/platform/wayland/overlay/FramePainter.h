// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/OverlaySurface.h"
#include "platform/wayland/SharedPixels.h"

namespace tovek {

/// Paints the part of a list that lies in `damage` into a frame, over the frozen picture of the
/// same size. Both have Format_RGB32; the highest byte of what is painted is anything. Any thread.
///
/// In a drag this happens for many small rectangles sixty times a second, for which the toolkit's
/// painter takes several times as long and wakes threads.
void paintFrame(const SharedPixels &frame, const SharedPixels &frozen, const DisplayList &list,
                const QRegion &damage);

} // namespace tovek
