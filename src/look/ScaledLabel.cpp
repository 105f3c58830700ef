// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "look/ScaledLabel.h"

#include <QApplication>
#include <QEvent>

namespace tovek {

ScaledLabel::ScaledLabel(const QString &text, double factor, QWidget *parent, QFont::Weight weight)
    : QLabel(text, parent)
    , m_factor(factor)
    , m_weight(weight)
{
    scale();
}

QFont ScaledLabel::scaled(QFont font, double factor)
{
    // Desktops give it in points or in pixels.
    if (font.pixelSize() > 0)
        font.setPixelSize(qRound(font.pixelSize() * factor));
    else
        font.setPointSizeF(font.pointSizeF() * factor);
    return font;
}

bool ScaledLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationFontChange)
        scale();
    return QLabel::event(event);
}

void ScaledLabel::scale()
{
    QFont font = scaled(QApplication::font(), m_factor);
    font.setWeight(m_weight);
    setFont(font);
}

} // namespace tovek
