// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/AnnotationHandles.h"

#include <array>
#include <cmath>

namespace tovek {

namespace {

constexpr double grabRadius = 12;

bool isWithinReach(Point a, Point b)
{
    return std::hypot(a.x - b.x, a.y - b.y) <= grabRadius;
}

struct Corner
{
    GrabbedHandle handle;
    Point at;
};

/// The corners of a rectangle in the order in which they are tested.
std::array<Corner, 4> cornersOf(const RectangleAnnotation &rectangle)
{
    const Rect r = Rect::spanning(rectangle.startPoint, rectangle.endPoint);
    const Point bottomLeft{r.minX(), r.minY()};
    const Point bottomRight{r.maxX(), r.minY()};
    const Point topLeft{r.minX(), r.maxY()};
    const Point topRight{r.maxX(), r.maxY()};
    return {{{{AnnotationHandle::bottomLeft, topRight}, bottomLeft},
             {{AnnotationHandle::bottomRight, topLeft}, bottomRight},
             {{AnnotationHandle::topLeft, bottomRight}, topLeft},
             {{AnnotationHandle::topRight, bottomLeft}, topRight}}};
}

} // namespace

std::optional<GrabbedHandle> handleAt(Point at, const Annotation &annotation)
{
    if (std::holds_alternative<TextAnnotation>(annotation))
        return std::nullopt;
    if (const auto *rectangle = std::get_if<RectangleAnnotation>(&annotation)) {
        for (const Corner &corner : cornersOf(*rectangle)) {
            if (isWithinReach(at, corner.at))
                return corner.handle;
        }
        return std::nullopt;
    }
    if (isWithinReach(at, fieldsOf(annotation).startPoint))
        return GrabbedHandle{AnnotationHandle::start, {}};
    if (isWithinReach(at, fieldsOf(annotation).endPoint))
        return GrabbedHandle{AnnotationHandle::end, {}};
    return std::nullopt;
}

void dragHandle(Annotation &annotation, const GrabbedHandle &handle, Point to)
{
    AnnotationFields &fields = fieldsOf(annotation);
    const Point fixed = handle.fixedCorner;
    switch (handle.which) {
    case AnnotationHandle::start:
        fields.startPoint = to;
        break;
    case AnnotationHandle::end:
        fields.endPoint = to;
        break;
    case AnnotationHandle::topLeft:
        fields.startPoint = {to.x, fixed.y};
        fields.endPoint = {fixed.x, to.y};
        break;
    case AnnotationHandle::bottomRight:
        fields.startPoint = {fixed.x, to.y};
        fields.endPoint = {to.x, fixed.y};
        break;
    case AnnotationHandle::bottomLeft:
        fields.startPoint = to;
        fields.endPoint = fixed;
        break;
    case AnnotationHandle::topRight:
        fields.startPoint = fixed;
        fields.endPoint = to;
        break;
    }
}

} // namespace tovek
