// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Geometry.h"

#include <QColor>
#include <QUuid>

#include <variant>
#include <vector>

namespace tovek {

/// `none` is the pointer.
enum class AnnotationTool { none, arrow, rectangle, line, text };

/// What every kind has. Points are in the overlay view's coordinates, y up.
struct AnnotationFields
{
    QUuid id = QUuid::createUuid();
    Point startPoint;
    Point endPoint;
    QColor color;
    bool isSelected = false; ///< draws its handles

    bool operator==(const AnnotationFields &) const = default;
};

struct ArrowAnnotation : AnnotationFields
{
    double lineWidth = 3;
    double arrowHeadLength = 15;
    double arrowHeadAngle = 0.52359877559829887; ///< half the angle of the head: 30 degrees

    bool operator==(const ArrowAnnotation &) const = default;
};

struct LineAnnotation : AnnotationFields
{
    double lineWidth = 3;

    bool operator==(const LineAnnotation &) const = default;
};

/// `startPoint` and `endPoint` are two opposite corners in any order.
struct RectangleAnnotation : AnnotationFields
{
    double lineWidth = 3;

    bool operator==(const RectangleAnnotation &) const = default;
};

/// `startPoint` is the top left corner of the text's box; `endPoint` moves along and says nothing.
struct TextAnnotation : AnnotationFields
{
    QString text;
    double fontSize = 16; ///< points

    bool operator==(const TextAnnotation &) const = default;
};

using Annotation =
    std::variant<ArrowAnnotation, LineAnnotation, RectangleAnnotation, TextAnnotation>;

const AnnotationFields &fieldsOf(const Annotation &annotation);
AnnotationFields &fieldsOf(Annotation &annotation);

/// True when the point lies on the annotation or within the tolerance (points) of it. Only the
/// outline of a rectangle counts, but the whole box of a text. Text needs a QGuiApplication.
bool hitTest(const Annotation &annotation, Point point, double tolerance);

/// Moves both points.
void moveBy(Annotation &annotation, double dx, double dy);

/// Draws nothing: a shape without extent or a text without characters.
bool isDegenerate(const Annotation &annotation);

/// The centres of the handles of a selected annotation: the two ends, or the four corners bottom
/// left, bottom right, top left, top right.
std::vector<Point> handlePoints(const Annotation &annotation);

/// The box that a text fills, below its `startPoint`.
Rect textBox(const TextAnnotation &annotation);

double distanceToSegment(Point point, Point from, Point to);

} // namespace tovek
