// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "annotations/AnnotationDrawing.h"

#include "foundation/DrawingContext.h"
#include "foundation/SystemColors.h"
#include "foundation/SystemFont.h"
#include "foundation/TextBlock.h"

#include <cmath>

namespace tovek {

namespace {

constexpr double handleSide = 8;
constexpr double handleOutline = 1;
static_assert(handleReach == (handleSide + handleOutline) / 2);

/// The point at a distance from the tip, back along the arrow turned by an angle.
Point behindTip(const ArrowAnnotation &arrow, double distance, double turn)
{
    const Point tip = arrow.endPoint;
    const double angle = std::atan2(tip.y - arrow.startPoint.y, tip.x - arrow.startPoint.x) + turn;
    return {tip.x - distance * std::cos(angle), tip.y - distance * std::sin(angle)};
}

void drawShape(const LineAnnotation &line, DrawingContext &context)
{
    context.strokeSegment(line.startPoint, line.endPoint, {line.color, line.lineWidth});
}

void drawShape(const RectangleAnnotation &rectangle, DrawingContext &context)
{
    context.strokeRect(Rect::spanning(rectangle.startPoint, rectangle.endPoint),
                       {rectangle.color, rectangle.lineWidth});
}

void drawShape(const ArrowAnnotation &arrow, DrawingContext &context)
{
    // The shaft stops short of the tip, so that its round cap hides under the head.
    context.strokeSegment(arrow.startPoint, behindTip(arrow, arrow.arrowHeadLength / 2, 0),
                          {arrow.color, arrow.lineWidth});
    const auto [tip, left, right] = headOf(arrow);
    context.fillPolygon({tip, left, right}, arrow.color);
}

void drawShape(const TextAnnotation &text, DrawingContext &context)
{
    context.drawText(TextBlock(text.text, systemFont(text.fontSize, QFont::Medium)),
                     text.startPoint, text.color);
}

void drawHandle(Point center, DrawingContext &context)
{
    const Rect square{center.x - handleSide / 2, center.y - handleSide / 2, handleSide, handleSide};
    context.fillRect(square, SystemColors::blue);
    context.strokeRect(square, {SystemColors::white, handleOutline, Stroke::Join::sharp});
}

} // namespace

void draw(const Annotation &annotation, DrawingContext &context)
{
    if (isDegenerate(annotation))
        return;
    context.save();
    std::visit([&](const auto &kind) { drawShape(kind, context); }, annotation);
    if (fieldsOf(annotation).isSelected) {
        for (Point point : handlePoints(annotation))
            drawHandle(point, context);
    }
    context.restore();
}

std::array<Point, 3> headOf(const ArrowAnnotation &arrow)
{
    return {arrow.endPoint, behindTip(arrow, arrow.arrowHeadLength, -arrow.arrowHeadAngle),
            behindTip(arrow, arrow.arrowHeadLength, arrow.arrowHeadAngle)};
}

} // namespace tovek
