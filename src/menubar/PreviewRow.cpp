// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "menubar/PreviewRow.h"

#include "menubar/ThumbnailGeometry.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>

#include <optional>

namespace tovek {

namespace {

constexpr QSize box(200, 110);
constexpr int margin = 8;
constexpr double radius = 5;

class Row : public QWidget
{
public:
    Row(QImage image, std::function<void()> onDragged, QWidget *parent)
        : QWidget(parent)
        , m_image(std::move(image))
        , m_size(m_image.size().scaled(box, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)))
        , m_onDragged(std::move(onDragged))
    {
        setAccessibleName(QStringLiteral("Last capture"));
        setCursor(Qt::OpenHandCursor);
    }

    QSize sizeHint() const override
    {
        return {box.width() + 2 * margin, m_size.height() + 2 * margin};
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        const int left = (width() - m_size.width()) / 2; // on whole pixels
        const QRectF place(QPointF(left, margin), m_size);
        QPainterPath shape;
        shape.addRoundedRect(place, radius, radius);
        const double scale = devicePixelRatioF();
        if (m_scaled.isNull())
            m_scaled = m_image.scaled((QSizeF(m_size) * scale).toSize(), Qt::IgnoreAspectRatio,
                                      Qt::SmoothTransformation);
        painter.setClipPath(shape);
        painter.drawImage(place, m_scaled);
        painter.setClipping(false);
        painter.setPen(QColor(128, 128, 128, 110));
        painter.drawPath(shape);
    }

    void mousePressEvent(QMouseEvent *event) override
    {
        if (event->button() == Qt::LeftButton)
            m_pressedAt = event->globalPosition();
        event->accept();
    }
    void mouseMoveEvent(QMouseEvent *event) override
    {
        event->accept();
        if (!m_pressedAt || !isDrag(*m_pressedAt, event->globalPosition()))
            return;
        m_pressedAt.reset();
        if (m_onDragged)
            m_onDragged();
    }
    void mouseReleaseEvent(QMouseEvent *event) override
    {
        m_pressedAt.reset();
        event->accept();
    }

private:
    QImage m_image;
    QImage m_scaled;
    QSize m_size;
    std::function<void()> m_onDragged;
    std::optional<QPointF> m_pressedAt;
};

} // namespace

PreviewRow::PreviewRow(const QImage &image, QObject *parent) : QWidgetAction(parent), m_image(image)
{
    setText(QStringLiteral("Last capture"));
}

QWidget *PreviewRow::createWidget(QWidget *parent)
{
    return new Row(m_image, onDragged, parent);
}

} // namespace tovek
