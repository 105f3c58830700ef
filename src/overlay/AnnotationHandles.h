// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "annotations/Annotation.h"

#include <optional>

namespace tovek {

/// A part of an annotation that can be dragged by itself.
enum class AnnotationHandle { start, end, topLeft, topRight, bottomLeft, bottomRight };

struct GrabbedHandle
{
    AnnotationHandle which;
    Point fixedCorner; ///< of a rectangle: opposite to the one that is dragged
};

/// The handle within 12 points of the place, the first that fits; text has none.
std::optional<GrabbedHandle> handleAt(Point at, const Annotation &annotation);

/// Brings the handle to the place. Start and end of a rectangle become two opposite corners, in
/// the order that the corner has.
void dragHandle(Annotation &annotation, const GrabbedHandle &handle, Point to);

} // namespace tovek
