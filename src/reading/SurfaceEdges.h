// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/InkMap.h"

namespace tovek {

class Surfaces;

/// Takes what divides two surfaces out of the map: the soft edges and rounded corners of buttons,
/// cards and speech bubbles, and the corners and short sides of frames. A letter lies on one
/// surface, all around.
void eraseEdges(InkMap &map, const QImage &image, const Surfaces &surfaces);

} // namespace tovek
