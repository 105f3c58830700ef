// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/OverlaySurface.h"
#include "platform/wayland/SharedPixels.h"

namespace tovek {

/// Paints the part of a list that lies in `damage` into a frame, which the compositor shows over
/// the frozen picture: Format_ARGB32_Premultiplied, clear where nothing lies over the picture. Any
/// thread.
///
/// In a drag this happens for many small rectangles sixty times a second, for which the toolkit's
/// painter takes several times as long and wakes threads.
void paintFrame(const SharedPixels &frame, const DisplayList &list, const QRegion &damage);

} // namespace tovek
