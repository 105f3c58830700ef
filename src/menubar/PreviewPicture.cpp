// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "menubar/PreviewPicture.h"

#include "menubar/ThumbnailGeometry.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <utility>

namespace tovek {

namespace {

constexpr double radius = 5;
constexpr int smallest = 24; // points, for the hand

} // namespace

PreviewPicture::PreviewPicture(QImage image, int margin, QWidget *parent)
    : QWidget(parent)
    , m_image(std::move(image))
    , m_margin(margin)
    , m_size(m_image.size().scaled(box, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)))
{
    setAccessibleName(QStringLiteral("Last capture"));
    setCursor(Qt::OpenHandCursor);
}

QSize PreviewPicture::sizeHint() const
{
    return m_size.expandedTo(QSize(smallest, smallest)) + QSize(2 * m_margin, 2 * m_margin);
}

void PreviewPicture::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    // On whole pixels.
    const QPoint corner((width() - m_size.width()) / 2, (height() - m_size.height()) / 2);
    const QRectF place(corner, m_size);
    QPainterPath shape;
    shape.addRoundedRect(place, radius, radius);
    const QSize pixels = (QSizeF(m_size) * devicePixelRatioF()).toSize();
    if (m_scaled.size() != pixels)
        m_scaled = m_image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    painter.setClipPath(shape);
    painter.drawImage(place, m_scaled);
    painter.setClipping(false);
    painter.setPen(QColor(128, 128, 128, 110));
    painter.drawPath(shape);
}

void PreviewPicture::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    if (event->button() != Qt::LeftButton)
        return;
    m_pressedAt = event->globalPosition();
    if (onPressed)
        onPressed();
}

void PreviewPicture::mouseMoveEvent(QMouseEvent *event)
{
    event->accept();
    if (!m_pressedAt || !isDrag(*m_pressedAt, event->globalPosition()))
        return;
    m_pressedAt.reset();
    if (onDragged)
        onDragged();
}

void PreviewPicture::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept();
    if (std::exchange(m_pressedAt, std::nullopt) && onClicked)
        onClicked();
}

} // namespace tovek
