// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "annotations/Annotation.h"

#include <array>

namespace tovek {

class DrawingContext;

/// Draws the annotation and, while it is selected, its handles. Degenerate shapes draw nothing,
/// not even handles. Text needs a QGuiApplication.
void draw(const Annotation &annotation, DrawingContext &context);

/// The three corners of an arrow's head, the tip first.
std::array<Point, 3> headOf(const ArrowAnnotation &arrow);

/// Half the side of a handle's square, with its outline.
inline constexpr double handleReach = 4.5;

} // namespace tovek
