// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/Material.h"
#include "overlay/Motion.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QWidget>

namespace tovek {

/// A capsule with one line of text that fades in and out over the overlay. Never takes the mouse.
class ToolbarTooltip : public QWidget
{
    Q_OBJECT

public:
    /// The parent is the overlay view; the provider must outlive the tooltip.
    ToolbarTooltip(const BackdropProvider &backdrop, QWidget *parent);

    void setText(const QString &text);
    QString text() const { return m_text; }
    QSize sizeHint() const override;
    void fadeIn();
    void fadeOut();
    void backdropChanged();

    std::function<void()> onVisibilityChanged;

protected:
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    void startFade(double target);

    QString m_text;
    Material m_material;
    EaseInMotion m_opacity;
    QBasicTimer m_timer;
    QElapsedTimer m_clock;
};

} // namespace tovek
