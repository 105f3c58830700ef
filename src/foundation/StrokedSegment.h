// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QPointF>

class QColor;
class QPainter;
class QRect;

namespace tovek {

/// A straight stroke with round ends, in native pixels with y down.
struct StrokedSegment
{
    QPointF from;
    QPointF to;
    double width = 1;
};

/// Paints the segment, anti-aliased, onto a painter whose device has a device pixel ratio of 1. Its
/// transformation is left out of account, its clip counts. Pixels outside `within` cost nothing,
/// nor do those beside the stroke: the general way over an outline takes six times as long for a
/// stroke across a screen, and as long again for every part of it that is drawn alone.
void paintSegment(QPainter &painter, const StrokedSegment &segment, const QColor &color,
                  const QRect &within);

} // namespace tovek
