// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/SwitchControl.h"

#include "look/ModernStyle.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QVariantAnimation>

namespace tovek {

namespace {

constexpr QSizeF track(34, 20);
constexpr double knobInset = 2;
constexpr int slideMs = 140;

QColor mixed(const QColor &from, const QColor &to, double part)
{
    const float share = float(part);
    return QColor::fromRgbF(from.redF() + (to.redF() - from.redF()) * share,
                            from.greenF() + (to.greenF() - from.greenF()) * share,
                            from.blueF() + (to.blueF() - from.blueF()) * share,
                            from.alphaF() + (to.alphaF() - from.alphaF()) * share);
}

} // namespace

SwitchControl::SwitchControl(QWidget *parent)
    : QCheckBox(parent)
    , m_slide(new QVariantAnimation(this))
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
    m_slide->setDuration(slideMs);
    m_slide->setEasingCurve(QEasingCurve::OutCubic);
    connect(m_slide, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        m_position = value.toDouble();
        update();
    });
    connect(this, &QCheckBox::toggled, this, &SwitchControl::slide);
}

QSize SwitchControl::sizeHint() const
{
    return {int(track.width()) + 2 * ringRoom, int(track.height()) + 2 * ringRoom};
}

void SwitchControl::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (!isEnabled())
        painter.setOpacity(0.45);
    const QPalette colors = palette();
    QColor off = colors.color(QPalette::WindowText);
    off.setAlphaF(ModernStyle::isDark(colors) ? 0.28f : 0.20f);
    const QRectF rail(QPointF(ringRoom, ringRoom), track);
    painter.setBrush(mixed(off, colors.color(QPalette::Active, QPalette::Highlight), m_position));
    painter.drawRoundedRect(rail, rail.height() / 2, rail.height() / 2);

    const double side = rail.height() - 2 * knobInset;
    const double place = isRightToLeft() ? 1 - m_position : m_position;
    const double left = rail.left() + knobInset + place * (rail.width() - side - 2 * knobInset);
    const QRectF knob(left, rail.top() + knobInset, side, side);
    painter.setBrush(QColor(0, 0, 0, 38));
    painter.drawEllipse(knob.translated(0, 0.8));
    painter.setBrush(Qt::white);
    painter.drawEllipse(knob);

    QStyleOption option;
    option.initFrom(this);
    if (option.state & QStyle::State_HasFocus && option.state & QStyle::State_KeyboardFocusChange) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(ModernStyle::focusRingColor(colors), 2));
        const QRectF ring = rail.adjusted(-2, -2, 2, 2);
        painter.drawRoundedRect(ring, ring.height() / 2, ring.height() / 2);
    }
}

void SwitchControl::slide(bool isOn)
{
    m_slide->stop();
    const bool isAnimated =
        isVisible() && style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0;
    if (!isAnimated) {
        m_position = isOn;
        return update();
    }
    m_slide->setStartValue(m_position);
    m_slide->setEndValue(isOn ? 1.0 : 0.0);
    m_slide->start();
}

} // namespace tovek
