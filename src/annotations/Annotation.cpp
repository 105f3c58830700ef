// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "annotations/Annotation.h"

#include "foundation/SystemFont.h"
#include "foundation/TextBlock.h"

#include <cmath>

namespace tovek {

namespace {

Rect cornersOf(const AnnotationFields &fields)
{
    return Rect::spanning(fields.startPoint, fields.endPoint);
}

bool hits(const AnnotationFields &segment, Point point, double tolerance)
{
    return distanceToSegment(point, segment.startPoint, segment.endPoint) <= tolerance;
}

bool hits(const RectangleAnnotation &rectangle, Point point, double tolerance)
{
    const Rect r = cornersOf(rectangle);
    const Point corners[] = {{r.minX(), r.minY()},
                             {r.maxX(), r.minY()},
                             {r.maxX(), r.maxY()},
                             {r.minX(), r.maxY()},
                             {r.minX(), r.minY()}};
    for (size_t i = 0; i + 1 < std::size(corners); ++i) {
        if (distanceToSegment(point, corners[i], corners[i + 1]) <= tolerance)
            return true;
    }
    return false;
}

bool hits(const TextAnnotation &text, Point point, double tolerance)
{
    if (text.text.isEmpty())
        return false;
    const Rect reach = textBox(text).insetBy(-tolerance, -tolerance);
    return point.x >= reach.minX() && point.x <= reach.maxX() && point.y >= reach.minY()
        && point.y <= reach.maxY();
}

std::vector<Point> cornerPoints(const Rect &r)
{
    return {{r.minX(), r.minY()}, {r.maxX(), r.minY()}, {r.minX(), r.maxY()}, {r.maxX(), r.maxY()}};
}

} // namespace

const AnnotationFields &fieldsOf(const Annotation &annotation)
{
    return std::visit(
        [](const AnnotationFields &fields) -> const AnnotationFields & { return fields; },
        annotation);
}

AnnotationFields &fieldsOf(Annotation &annotation)
{
    return std::visit([](AnnotationFields &fields) -> AnnotationFields & { return fields; },
                      annotation);
}

bool hitTest(const Annotation &annotation, Point point, double tolerance)
{
    return std::visit([&](const auto &kind) { return hits(kind, point, tolerance); }, annotation);
}

void moveBy(Annotation &annotation, double dx, double dy)
{
    AnnotationFields &fields = fieldsOf(annotation);
    for (Point *point : {&fields.startPoint, &fields.endPoint}) {
        point->x += dx;
        point->y += dy;
    }
}

bool isDegenerate(const Annotation &annotation)
{
    if (const auto *text = std::get_if<TextAnnotation>(&annotation))
        return text->text.isEmpty();
    const AnnotationFields &fields = fieldsOf(annotation);
    return fields.startPoint == fields.endPoint;
}

std::vector<Point> handlePoints(const Annotation &annotation)
{
    if (const auto *text = std::get_if<TextAnnotation>(&annotation))
        return cornerPoints(textBox(*text));
    const AnnotationFields &fields = fieldsOf(annotation);
    if (std::holds_alternative<RectangleAnnotation>(annotation))
        return cornerPoints(cornersOf(fields));
    return {fields.startPoint, fields.endPoint};
}

Rect textBox(const TextAnnotation &annotation)
{
    const Size size =
        TextBlock(annotation.text, systemFont(annotation.fontSize, QFont::Medium)).size();
    return {annotation.startPoint.x, annotation.startPoint.y - size.height, size.width,
            size.height};
}

double distanceToSegment(Point point, Point from, Point to)
{
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double squaredLength = dx * dx + dy * dy;
    if (squaredLength == 0)
        return std::hypot(point.x - from.x, point.y - from.y);
    const double along = ((point.x - from.x) * dx + (point.y - from.y) * dy) / squaredLength;
    const double t = std::max(std::min(along, 1.0), 0.0);
    return std::hypot(point.x - (from.x + t * dx), point.y - (from.y + t * dy));
}

} // namespace tovek
