// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/InkMap.h"

namespace tovek {

class Surfaces;

/// The upright rectangles that a picture of windows consists of: an open menu, a side bar, a list,
/// a line's whole selection. No line of text goes on from one into another, and their lines need
/// not stand on each other's. Text that is marked within a line is none. The smallest first.
std::vector<QRect> panelsOf(const Surfaces &surfaces, QSize picture);

/// The patches of each panel, in their order, and first those in none.
std::vector<std::vector<InkPatch>> byPanel(const std::vector<InkPatch> &patches,
                                           const std::vector<QRect> &panels);

} // namespace tovek
