// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Geometry.h"

#include <initializer_list>

class QColor;
class QPainter;

namespace tovek {

class TextBlock;

/// How an outline is drawn. Segments end in round caps.
struct Stroke
{
    enum class Join { round, sharp };

    const QColor &color;
    double width = 1; ///< points
    Join join = Join::round;
};

/// Draws in a view's points with y up onto a painter over native pixels, so that one drawing code
/// serves the screen and the exported picture. Everything is anti-aliased. The painter is left as
/// it was found when the context dies.
class DrawingContext
{
public:
    /// `origin` is the view's native pixel (y down) that lies at the painter's (0, 0).
    DrawingContext(QPainter &painter, const ViewSpace &space, QPoint origin = {});
    ~DrawingContext();
    DrawingContext(const DrawingContext &) = delete;
    DrawingContext &operator=(const DrawingContext &) = delete;

    void save();
    void restore();

    void strokeSegment(Point from, Point to, const Stroke &stroke);
    void strokeRect(const Rect &rect, const Stroke &stroke);
    void fillRect(const Rect &rect, const QColor &color);
    /// Non-zero winding.
    void fillPolygon(std::initializer_list<Point> points, const QColor &color);
    void drawText(const TextBlock &text, Point topLeft, const QColor &color);

private:
    QPainter &m_painter;
    ViewSpace m_space;
};

} // namespace tovek
