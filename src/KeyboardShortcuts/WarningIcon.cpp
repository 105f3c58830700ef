// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/WarningIcon.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>

namespace KeyboardShortcuts {

namespace {

const QColor warningColor(0xff, 0x9f, 0x0a);

class WarningIcon : public QIconEngine
{
public:
    void paint(QPainter *painter, const QRect &rect, QIcon::Mode, QIcon::State) override
    {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / 44.0, rect.height() / 44.0);
        QPainterPath triangle;
        triangle.moveTo(22, 7);
        triangle.lineTo(39, 37);
        triangle.lineTo(5, 37);
        triangle.closeSubpath();
        painter->setPen(QPen(warningColor, 6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(warningColor);
        painter->drawPath(triangle);
        painter->setPen(QPen(Qt::white, 3.6, Qt::SolidLine, Qt::RoundCap));
        painter->drawLine(QPointF(22, 17), QPointF(22, 26));
        painter->drawPoint(QPointF(22, 33));
        painter->restore();
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }
    QIconEngine *clone() const override { return new WarningIcon; } // the icon owns it
};

} // namespace

QIcon warningIcon()
{
    return QIcon(new WarningIcon); // owned by the icon
}

} // namespace KeyboardShortcuts
