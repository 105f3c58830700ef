// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/AnnotationLayer.h"

#include "annotations/AnnotationDrawing.h"
#include "foundation/DrawingContext.h"

#include <QPainter>

#include <cmath>
#include <optional>

namespace tovek {

namespace {

/// Shapes up to this many pixels stay in one piece: 256 kB.
constexpr qint64 onePiece = 64 * 1024;
/// The length of a stroke's pieces in native pixels.
constexpr double pieceLength = 192;
/// No piece is longer: a pasted line can be longer than any picture may be.
constexpr int longestSide = 2048;
/// Anti-aliasing reaches into the pixels around.
constexpr int softEdge = 1;

QRect pixelsAround(const Rect &rect, const ViewSpace &space)
{
    return space.pixelsFromRect(rect).toAlignedRect().adjusted(-softEdge, -softEdge, softEdge,
                                                               softEdge);
}

Rect around(Point p, double reach)
{
    return {p.x - reach, p.y - reach, 2 * reach, 2 * reach};
}

Rect around(Point a, Point b, double reach)
{
    return Rect::spanning(a, b).insetBy(-reach, -reach);
}

/// Boxes along a stroke. Neighbours overlap by the stroke's width.
void addSegment(std::vector<QRect> &boxes, Point from, Point to, double reach,
                const ViewSpace &space)
{
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const bool isStraight = dx == 0 || dy == 0;
    const double length = std::max(std::abs(dx), std::abs(dy)) * space.scale;
    const int count = isStraight ? 1 : std::max(1, int(std::ceil(length / pieceLength)));
    for (int i = 0; i < count; ++i) {
        const Point a{from.x + dx * i / count, from.y + dy * i / count};
        const Point b{from.x + dx * (i + 1) / count, from.y + dy * (i + 1) / count};
        boxes.push_back(pixelsAround(around(a, b, reach), space));
    }
}

struct BoxCollector
{
    const ViewSpace &space;
    std::vector<QRect> boxes{};

    void operator()(const LineAnnotation &line)
    {
        addSegment(boxes, line.startPoint, line.endPoint, line.lineWidth / 2, space);
    }
    void operator()(const ArrowAnnotation &arrow)
    {
        addSegment(boxes, arrow.startPoint, arrow.endPoint, arrow.lineWidth / 2, space);
        const auto [tip, left, right] = headOf(arrow);
        boxes.push_back(pixelsAround(around(tip, left, 0), space)
                        | pixelsAround(around(tip, right, 0), space));
        // A short arrow's shaft begins behind its own start.
        boxes.push_back(
            pixelsAround(around(tip, arrow.arrowHeadLength / 2 + arrow.lineWidth / 2), space));
    }
    void operator()(const RectangleAnnotation &rectangle)
    {
        const Rect r = Rect::spanning(rectangle.startPoint, rectangle.endPoint);
        const double reach = rectangle.lineWidth / 2;
        const Point corners[] = {{r.minX(), r.minY()},
                                 {r.maxX(), r.minY()},
                                 {r.maxX(), r.maxY()},
                                 {r.minX(), r.maxY()},
                                 {r.minX(), r.minY()}};
        for (size_t i = 0; i + 1 < std::size(corners); ++i)
            addSegment(boxes, corners[i], corners[i + 1], reach, space);
    }
    void operator()(const TextAnnotation &text)
    {
        // Accents and slanted letters can reach out of their box.
        const double overhang = text.fontSize / 2;
        boxes.push_back(pixelsAround(textBox(text).insetBy(-overhang, -overhang), space));
    }
};

void addTiles(std::vector<QRect> &tiles, const QRect &piece)
{
    for (int y = piece.top(); y <= piece.bottom(); y += longestSide) {
        for (int x = piece.left(); x <= piece.right(); x += longestSide)
            tiles.push_back(QRect(x, y, longestSide, longestSide) & piece);
    }
}

DisplayList::Decal drawn(const Annotation &annotation, const ViewSpace &space, const QRect &piece)
{
    QImage image(piece.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    DrawingContext context(painter, space, piece.topLeft());
    draw(annotation, context);
    return {quint64(image.cacheKey()), piece.topLeft(), image, {}};
}

/// The native pixels by which `to` lies beside `from`, if they are otherwise alike and that is a
/// whole number of pixels.
std::optional<QPoint> wholeShift(const Annotation &from, const Annotation &to, double scale)
{
    const Point a = fieldsOf(from).startPoint;
    const Point b = fieldsOf(to).startPoint;
    Annotation moved = from;
    fieldsOf(moved).startPoint = b;
    fieldsOf(moved).endPoint.x = fieldsOf(to).endPoint.x;
    fieldsOf(moved).endPoint.y = fieldsOf(to).endPoint.y;
    if (moved != to)
        return std::nullopt;
    const QPointF shift((b.x - a.x) * scale, -(b.y - a.y) * scale);
    const QPointF endShift((fieldsOf(to).endPoint.x - fieldsOf(from).endPoint.x) * scale,
                           -(fieldsOf(to).endPoint.y - fieldsOf(from).endPoint.y) * scale);
    const QPoint whole = shift.toPoint();
    if ((shift - whole).manhattanLength() > 1e-3 || (endShift - whole).manhattanLength() > 1e-3)
        return std::nullopt;
    return whole;
}

} // namespace

std::vector<QRect> piecesOf(const Annotation &annotation, const ViewSpace &space)
{
    if (isDegenerate(annotation))
        return {};
    BoxCollector collector{space};
    std::visit(collector, annotation);
    std::vector<QRect> &boxes = collector.boxes;
    if (fieldsOf(annotation).isSelected) {
        for (Point handle : handlePoints(annotation))
            boxes.push_back(pixelsAround(around(handle, handleReach), space));
    }
    QRect bounds;
    for (const QRect &box : boxes)
        bounds |= box;
    if (qint64(bounds.width()) * bounds.height() <= onePiece)
        boxes = {bounds};

    // Disjoint, since an edge that is blended twice would turn out too dark.
    std::vector<QRect> pieces;
    QRegion covered;
    for (const QRect &box : boxes) {
        for (const QRect &fresh : QRegion(box) - covered)
            addTiles(pieces, fresh);
        covered += box;
    }
    return pieces;
}

AnnotationLayer::Rendered AnnotationLayer::rendered(const Annotation &annotation,
                                                    const ViewSpace &space)
{
    for (const Rendered &cached : m_cache) {
        if (fieldsOf(cached.annotation).id != fieldsOf(annotation).id || cached.space != space)
            continue;
        const std::optional<QPoint> shift = wholeShift(cached.annotation, annotation, space.scale);
        if (!shift)
            break;
        Rendered moved = cached;
        moved.annotation = annotation;
        for (Piece &piece : moved.pieces) {
            piece.place.translate(*shift);
            piece.decal.at += *shift;
        }
        return moved;
    }
    Rendered fresh{annotation, space, {}};
    for (const QRect &place : piecesOf(annotation, space))
        fresh.pieces.push_back({place, {}});
    return fresh;
}

std::vector<DisplayList::Item> AnnotationLayer::items(const std::vector<Annotation> &annotations,
                                                      const ViewSpace &space, const Rect &clip)
{
    const QRectF pixels = space.pixelsFromRect(clip);
    const QRect clipPixels(pixels.topLeft().toPoint(),
                           QPoint(qRound(pixels.right()) - 1, qRound(pixels.bottom()) - 1));
    std::vector<Rendered> used;
    std::vector<DisplayList::Item> items;
    for (const Annotation &annotation : annotations) {
        used.push_back(rendered(annotation, space));
        for (Piece &piece : used.back().pieces) {
            if (!piece.place.intersects(clipPixels)) {
                piece.decal = {};
                continue;
            }
            if (piece.decal.image.isNull())
                piece.decal = drawn(annotation, space, piece.place);
            items.push_back(piece.decal);
            std::get<DisplayList::Decal>(items.back()).clip = clipPixels;
        }
    }
    m_cache = std::move(used);
    return items;
}

} // namespace tovek
