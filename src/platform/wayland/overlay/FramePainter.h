// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/OverlaySurface.h"
#include "platform/wayland/SharedPixels.h"

#include <span>

namespace tovek {

/// Paints the parts of a list that lie in `damage` into a frame, which the compositor shows over
/// the frozen picture: Format_ARGB32_Premultiplied, clear where nothing lies over the picture. Any
/// thread.
///
/// In a drag this happens for many small rectangles sixty times a second, for which the toolkit's
/// painter takes several times as long and wakes threads.
void paintFrame(const SharedPixels &frame, const DisplayList &list, std::span<const QRect> damage);

/// Covers the same and a little more with fewer rectangles, where what is to be done with each
/// takes longer than with some hundreds of pixels.
std::vector<QRect> joined(std::vector<QRect> rects);

} // namespace tovek
