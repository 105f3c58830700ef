// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/InkMap.h"

namespace tovek {

/// Erases the lines below words that are too short to be seen as rules, those of links above all:
/// they join what stands on them. The strokes that cross them, and underscores, stay.
void eraseUnderlines(InkMap &map);

} // namespace tovek
