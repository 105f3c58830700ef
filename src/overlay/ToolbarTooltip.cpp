// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/ToolbarTooltip.h"

#include "foundation/SystemFont.h"
#include "foundation/TextBlock.h"

#include <QPainter>
#include <QTimerEvent>

#include <cmath>

namespace tovek {

namespace {

constexpr double fontSize = 11;
constexpr int paddingX = 12;
constexpr int paddingY = 4;
constexpr double fadeSeconds = 0.12;
constexpr int tooltipFrameMs = 16;
constexpr Material::Look tooltipLook{
    .radius = 1000, .margin = 0, .outlineAlpha = 0.4, .outlineWidth = 0.5};

} // namespace

ToolbarTooltip::ToolbarTooltip(const BackdropProvider &backdrop, QWidget *parent)
    : QWidget(parent)
    , m_material(*this, backdrop, tooltipLook)
    , m_opacity(0, fadeSeconds)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
}

void ToolbarTooltip::setText(const QString &text)
{
    m_text = text;
    setAccessibleName(text);
    resize(sizeHint());
    update();
}

QSize ToolbarTooltip::sizeHint() const
{
    const Size text = TextBlock(m_text, systemFont(fontSize, QFont::Medium)).size();
    return {int(std::ceil(text.width)) + 2 * paddingX, int(std::ceil(text.height)) + 2 * paddingY};
}

void ToolbarTooltip::fadeIn()
{
    const bool wasVisible = isVisible();
    startFade(1);
    show();
    raise();
    if (!wasVisible && onVisibilityChanged)
        onVisibilityChanged();
}

void ToolbarTooltip::fadeOut()
{
    startFade(0);
}

void ToolbarTooltip::startFade(double target)
{
    m_opacity.start(target);
    if (!m_timer.isActive()) {
        m_clock.start();
        m_timer.start(tooltipFrameMs, Qt::PreciseTimer, this);
    }
}

void ToolbarTooltip::backdropChanged()
{
    m_material.forget();
    update();
}

void ToolbarTooltip::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timer.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    m_opacity.advance(double(m_clock.restart()) / 1000);
    update();
    if (!m_opacity.isAtRest())
        return;
    m_timer.stop();
    if (m_opacity.value() == 0 && isVisible()) {
        hide();
        if (onVisibilityChanged)
            onVisibilityChanged();
    }
}

void ToolbarTooltip::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    m_material.paint(painter, m_opacity.value());
    painter.setOpacity(m_opacity.value());
    const TextBlock text(m_text, systemFont(fontSize, QFont::Medium));
    const QPointF at((width() - text.size().width) / 2, (height() - text.size().height) / 2);
    text.draw(painter, at, QColor::fromRgba(MaterialColor::primary));
}

} // namespace tovek
