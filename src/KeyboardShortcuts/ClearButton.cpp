// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/ClearButton.h"

#include <QPainter>

namespace KeyboardShortcuts {

ClearButton::ClearButton(QWidget *parent) : QToolButton(parent)
{
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::ArrowCursor);
}

void ClearButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor disc = palette().color(QPalette::Text);
    disc.setAlphaF(isDown() ? 0.65f : underMouse() ? 0.5f : 0.35f);
    painter.setPen(Qt::NoPen);
    painter.setBrush(disc);
    painter.drawEllipse(QRectF(rect()).adjusted(1, 1, -1, -1));
    painter.setPen(QPen(palette().color(QPalette::Base), 1.5, Qt::SolidLine, Qt::RoundCap));
    const QPointF center = QRectF(rect()).center();
    const double reach = 2.5;
    for (const double side : {-1.0, 1.0})
        painter.drawLine(center + QPointF(-reach, -reach * side),
                         center + QPointF(reach, reach * side));
}

} // namespace KeyboardShortcuts
