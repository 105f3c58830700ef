// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Geometry.h"

#include <QRect>

namespace tovek {

/// The selection's size in pixels, as the label beside it shows it: "200 × 100".
QString sizeLabelText(const Rect &selection, double scale);

/// The selection, pixels of its screen, for who hears instead of sees.
QString describedSelection(const QRect &pixels);

/// Where the label's box goes, in points with y up. Above the selection if there is room, else
/// below, else inside its top left corner. While the toolbar is above the selection the box goes
/// beside the top edge instead: left, else right, else inside.
Rect sizeLabelFrame(const Rect &selection, Size bounds, Size box, bool isToolbarAtTop);

} // namespace tovek
