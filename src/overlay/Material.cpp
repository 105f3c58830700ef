// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/Material.h"

#include "foundation/Blur.h"

#include <QPainter>
#include <QPainterPath>
#include <QWidget>

#include <cmath>

namespace tovek {

namespace {

/// Dark enough that white symbols stand out over a white page: 255 becomes about 82.
const QColor tint(30, 30, 34, 196);
constexpr double blurDeviation = 7.5; ///< points
constexpr double shadowStrength = 0.22;

/// The widget's rectangle in native pixels of its window.
QRect nativeRectOf(const QWidget &widget, double scale)
{
    const QPointF at(widget.mapTo(widget.window(), QPoint(0, 0)));
    return QRectF(at * scale, QSizeF(widget.size()) * scale).toAlignedRect();
}

} // namespace

Material::Material(QWidget &widget, const BackdropProvider &backdrop, Look look)
    : m_widget(widget)
    , m_backdrop(backdrop)
    , m_look(look)
{
}

void Material::refresh(double scale)
{
    const QRect pixels = nativeRectOf(m_widget, scale);
    if (pixels == m_pixels)
        return;
    m_pixels = pixels;
    // What lies around shines into a blur as well.
    const int reach = int(std::round(2 * blurDeviation * scale));
    const QWidget &window = *m_widget.window();
    const QRect screen(QPoint(0, 0), (QSizeF(window.size()) * scale).toSize());
    const QRect around = pixels.adjusted(-reach, -reach, reach, reach) & (screen | pixels);
    QImage picture = m_backdrop ? m_backdrop(around) : QImage();
    if (picture.isNull()) {
        picture = QImage(around.size(), QImage::Format_RGB32);
        picture.fill(Qt::black);
    }
    picture.setDevicePixelRatio(1);
    const QRect inside(pixels.topLeft() - around.topLeft(), pixels.size());
    m_plain = picture.copy(inside);
    m_blurred = blurred(picture, blurDeviation * scale).copy(inside);
    QPainter(&m_blurred).fillRect(m_blurred.rect(), tint);
}

void Material::paint(QPainter &painter, double opacity)
{
    const double scale = m_widget.devicePixelRatioF();
    refresh(scale);
    // The pictures lie on native pixels, which the widget's own corner need not.
    const QPointF origin = QPointF(m_widget.mapTo(m_widget.window(), QPoint(0, 0)));
    const QRectF target(QPointF(m_pixels.topLeft()) / scale - origin,
                        QSizeF(m_pixels.size()) / scale);
    painter.drawImage(target, m_plain);

    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(opacity);
    const QRectF plate =
        QRectF(m_widget.rect())
            .adjusted(m_look.margin, m_look.margin, -m_look.margin, -m_look.margin);
    const double radius = std::min(m_look.radius, plate.height() / 2);
    paintShadow(painter, plate);
    QBrush brush(m_blurred);
    brush.setTransform(
        QTransform::fromTranslate(target.x(), target.y()).scale(1 / scale, 1 / scale));
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.drawRoundedRect(plate, radius, radius);
    const double half = m_look.outlineWidth / 2;
    painter.setPen(
        QPen(QColor(255, 255, 255, int(255 * m_look.outlineAlpha)), m_look.outlineWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(plate.adjusted(half, half, -half, -half), radius - half, radius - half);
    painter.restore();
}

void Material::paintShadow(QPainter &painter, const QRectF &plate) const
{
    // Thin rings, each wider and fainter than the one inside: a soft edge without a picture.
    painter.setBrush(Qt::NoBrush);
    constexpr double ring = 0.5;
    for (int index = 0; index * ring < m_look.margin; ++index) {
        const double reach = index * ring;
        const double fading = 1 - reach / m_look.margin;
        painter.setPen(QPen(QColor(0, 0, 0, int(255 * shadowStrength * fading * fading)), ring));
        const double out = reach + ring / 2;
        const double radius = std::min(m_look.radius, plate.height() / 2) + out;
        painter.drawRoundedRect(plate.adjusted(-out, -out, out, out), radius, radius);
    }
}

} // namespace tovek
