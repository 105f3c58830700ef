// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/ocr/TextRuns.h"

namespace tovek {

/// Pieces of ink that stand side by side, in the picture's pixels: the dot is with its i. `ink` as
/// from evenInk. Soft edges do not count, so that letters which only their edges join are apart.
std::vector<QRect> inkSegments(const InkMap &ink, const TextRun &run);

} // namespace tovek
