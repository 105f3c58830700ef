// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Geometry.h"

namespace tovek::ToastGeometry {

inline constexpr double margin = 40; ///< on every side: room for the shadow and the overshoot
inline constexpr double shortestWidth = 100;
inline constexpr double shortestHeight = 40;

/// The content is never smaller than a toast may be. All sizes in points.
Size contentSize(Size intrinsic);

Size panelSize(Size content);

/// Where the panel lies on a screen: centred, the content's bottom edge at one fifth of the
/// screen's height. Both in global points, y up.
Rect panelFrame(Size content, const Rect &screenFrame);

} // namespace tovek::ToastGeometry
