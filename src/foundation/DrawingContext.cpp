// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/DrawingContext.h"

#include "foundation/StrokedSegment.h"
#include "foundation/TextBlock.h"

#include <QPainter>
#include <QPolygonF>

namespace tovek {

namespace {

QPen penFor(const Stroke &stroke)
{
    return QPen(stroke.color, stroke.width, Qt::SolidLine, Qt::RoundCap,
                stroke.join == Stroke::Join::round ? Qt::RoundJoin : Qt::MiterJoin);
}

} // namespace

DrawingContext::DrawingContext(QPainter &painter, const ViewSpace &space, QPoint origin)
    : m_painter(painter)
    , m_space(space)
{
    m_painter.save();
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_painter.translate(-origin);
    m_painter.scale(space.scale, space.scale);
}

DrawingContext::~DrawingContext()
{
    m_painter.restore();
}

void DrawingContext::save()
{
    m_painter.save();
}

void DrawingContext::restore()
{
    m_painter.restore();
}

void DrawingContext::strokeSegment(Point from, Point to, const Stroke &stroke)
{
    const QPaintDevice &device = *m_painter.device();
    const QTransform toPixels = m_painter.transform();
    if (device.devicePixelRatio() != 1) {
        m_painter.setPen(penFor(stroke));
        m_painter.drawLine(m_space.widgetFromPoint(from), m_space.widgetFromPoint(to));
        return;
    }
    QRect within(0, 0, device.width(), device.height());
    if (m_painter.hasClipping())
        within &= toPixels.mapRect(m_painter.clipBoundingRect()).toAlignedRect();
    paintSegment(m_painter,
                 {toPixels.map(m_space.widgetFromPoint(from)),
                  toPixels.map(m_space.widgetFromPoint(to)), stroke.width * m_space.scale},
                 stroke.color, within);
}

void DrawingContext::strokeRect(const Rect &rect, const Stroke &stroke)
{
    m_painter.setPen(penFor(stroke));
    m_painter.setBrush(Qt::NoBrush);
    // A rectangle without a width or a height draws nothing in Qt, but is a segment all the same.
    if (rect.width == 0 || rect.height == 0)
        strokeSegment({rect.minX(), rect.minY()}, {rect.maxX(), rect.maxY()}, stroke);
    else
        m_painter.drawRect(m_space.widgetFromRect(rect));
}

void DrawingContext::fillRect(const Rect &rect, const QColor &color)
{
    m_painter.fillRect(m_space.widgetFromRect(rect), color);
}

void DrawingContext::fillPolygon(std::initializer_list<Point> points, const QColor &color)
{
    QPolygonF polygon;
    for (Point p : points)
        polygon << m_space.widgetFromPoint(p);
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(color);
    m_painter.drawPolygon(polygon, Qt::WindingFill);
}

void DrawingContext::drawText(const TextBlock &text, Point topLeft, const QColor &color)
{
    text.draw(m_painter, m_space.widgetFromPoint(topLeft), color);
}

} // namespace tovek
