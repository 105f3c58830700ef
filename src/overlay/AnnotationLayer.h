// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "annotations/Annotation.h"
#include "platform/OverlaySurface.h"

namespace tovek {

/// Turns annotations into small pictures for the overlay's display list. What has not changed
/// since the last call keeps its pictures, and what only moved by whole native pixels keeps them
/// too. Large shapes are cut into pieces along their strokes, so that an outline around a whole
/// screen stays small, and what is out of sight costs nothing. Text needs a QGuiApplication.
class AnnotationLayer
{
public:
    /// In drawing order; nothing outside `clip`, in the view's points, is shown. Selected
    /// annotations show their handles.
    std::vector<DisplayList::Item> items(const std::vector<Annotation> &annotations,
                                         const ViewSpace &space, const Rect &clip);

private:
    struct Piece
    {
        QRect place;
        DisplayList::Decal decal; ///< without an image while it is out of sight
    };
    struct Rendered
    {
        Annotation annotation;
        ViewSpace space;
        std::vector<Piece> pieces;
    };
    Rendered rendered(const Annotation &annotation, const ViewSpace &space);

    std::vector<Rendered> m_cache; ///< of the last call
};

/// Disjoint native pixel rectangles that together hold everything that drawing the annotation
/// touches; close around the strokes of large shapes, and none longer than 2048 pixels.
std::vector<QRect> piecesOf(const Annotation &annotation, const ViewSpace &space);

} // namespace tovek
