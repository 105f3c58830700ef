// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/ToolbarButton.h"

#include "foundation/Symbol.h"
#include "overlay/Material.h"
#include "overlay/ToolbarButtonAccess.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>

namespace tovek {

namespace {

constexpr double pressedScale = 0.92;
constexpr Spring pressSpring{0.3, 0.7};
constexpr double hoverSeconds = 0.1;
constexpr int frameMs = 16;
constexpr double symbolSide = 18;
constexpr double swatchSide = 16;
constexpr double cornerRadius = 7;

bool isPressKey(int key)
{
    return key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter;
}

QColor withAlpha(QRgb color, double alpha)
{
    QColor result = QColor::fromRgba(color);
    result.setAlphaF(result.alphaF() * float(alpha));
    return result;
}

} // namespace

ToolbarButton::ToolbarButton(const QString &symbol, const QString &name, const QString &tooltip,
                             QWidget *parent)
    : QAbstractButton(parent)
    , m_symbol(symbol)
    , m_tooltip(tooltip)
    , m_scale(1, pressSpring)
    , m_hover(0, hoverSeconds)
{
    installToolbarButtonAccess();
    setFixedSize(side, side);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::ArrowCursor);
    setAccessibleName(name);
    setAccessibleDescription(tooltip);
    connect(this, &QAbstractButton::pressed, this, [this] {
        m_scale.start(pressedScale);
        animate();
    });
    connect(this, &QAbstractButton::released, this, [this] {
        m_scale.start(1);
        animate();
    });
}

void ToolbarButton::setActive(bool isActive)
{
    setCheckable(true);
    setChecked(isActive);
}

void ToolbarButton::setSwatch(const QColor &color)
{
    m_swatch = color;
    update();
}

bool ToolbarButton::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverLeave: {
        const bool isEntered = event->type() == QEvent::HoverEnter;
        m_hover.start(isEntered ? 1 : 0);
        animate();
        if (onPointedAt)
            onPointedAt(*this, isEntered);
        break;
    }
    case QEvent::FocusIn:
    case QEvent::FocusOut: {
        const auto reason = static_cast<QFocusEvent *>(event)->reason();
        m_showsFocus = event->type() == QEvent::FocusIn
            && (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason);
        if (onPointedAt)
            onPointedAt(*this, m_showsFocus);
        update();
        break;
    }
    case QEvent::MouseButtonRelease:
        m_modifiers = static_cast<QMouseEvent *>(event)->modifiers();
        break;
    default:
        break;
    }
    return QAbstractButton::event(event);
}

void ToolbarButton::keyPressEvent(QKeyEvent *event)
{
    const bool isPlain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    if (!isPressKey(event->key()) || !isPlain) {
        event->ignore();
        return;
    }
    if (!event->isAutoRepeat()) {
        m_modifiers = event->modifiers();
        setDown(true);
        Q_EMIT pressed();
    }
}

void ToolbarButton::keyReleaseEvent(QKeyEvent *event)
{
    if (!isPressKey(event->key()) || !isDown()) {
        event->ignore();
        return;
    }
    if (!event->isAutoRepeat()) {
        setDown(false);
        Q_EMIT released();
        Q_EMIT clicked(isChecked());
    }
}

void ToolbarButton::animate()
{
    if (m_timer.isActive())
        return;
    m_clock.start();
    m_timer.start(frameMs, Qt::PreciseTimer, this);
}

void ToolbarButton::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timer.timerId()) {
        QAbstractButton::timerEvent(event);
        return;
    }
    const double seconds = double(m_clock.restart()) / 1000;
    m_scale.advance(seconds);
    m_hover.advance(seconds);
    if (m_scale.isAtRest() && m_hover.isAtRest())
        m_timer.stop();
    update();
}

void ToolbarButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame(rect());
    painter.translate(frame.center());
    painter.scale(m_scale.value(), m_scale.value());
    painter.translate(-frame.center());
    painter.setPen(Qt::NoPen);
    if (isChecked()) {
        painter.setBrush(QColor::fromRgba(MaterialColor::active));
        painter.drawRoundedRect(frame, cornerRadius, cornerRadius);
    }
    if (m_hover.value() > 0) {
        painter.setBrush(withAlpha(MaterialColor::hover, m_hover.value()));
        painter.drawRoundedRect(frame, cornerRadius, cornerRadius);
    }
    const QPointF corner = frame.center() - QPointF(symbolSide, symbolSide) / 2;
    const bool isPrimary = isChecked() || isDown() || m_hover.value() > 0;
    if (m_swatch.isValid()) {
        paintSwatch(painter, frame);
    } else if (const auto symbol = Symbol::named(m_symbol)) {
        symbol->paint(
            painter, QRectF(corner, QSizeF(symbolSide, symbolSide)),
            QColor::fromRgba(isPrimary ? MaterialColor::primary : MaterialColor::secondary));
    }
    if (m_showsFocus && hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(QColor::fromRgba(MaterialColor::primary), 2));
        painter.drawRoundedRect(frame.adjusted(1, 1, -1, -1), cornerRadius - 1, cornerRadius - 1);
    }
}

void ToolbarButton::paintSwatch(QPainter &painter, const QRectF &into) const
{
    const QPointF center = into.center();
    // A light ring sets dark colours off from the material, a dark one the light colours.
    painter.setBrush(QColor::fromRgba(MaterialColor::primary));
    painter.drawEllipse(center, swatchSide / 2 + 1.5, swatchSide / 2 + 1.5);
    painter.setBrush(QColor(40, 40, 44));
    painter.drawEllipse(center, swatchSide / 2, swatchSide / 2);
    painter.setBrush(m_swatch);
    painter.drawEllipse(center, swatchSide / 2 - 1, swatchSide / 2 - 1);
}

} // namespace tovek
