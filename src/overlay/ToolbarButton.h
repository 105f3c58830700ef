// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/Motion.h"

#include <QAbstractButton>
#include <QBasicTimer>
#include <QColor>
#include <QElapsedTimer>

#include <functional>

namespace tovek {

/// A button of 28 by 28 points on translucent material: a symbol, or a swatch of a colour. Pressed
/// it shrinks on a spring; under the pointer it brightens. Space, Return and Enter press it; every
/// other key is left to the overlay. Timers run only while something moves.
class ToolbarButton : public QAbstractButton
{
    Q_OBJECT

public:
    static constexpr int side = 28;

    /// The tooltip is the button's accessible description too.
    ToolbarButton(const QString &symbol, const QString &name, const QString &tooltip,
                  QWidget *parent);

    QSize sizeHint() const override { return {side, side}; }
    /// Shown as the one in use, of several that exclude each other. A click never changes it.
    void setActive(bool isActive);
    bool isActive() const { return isChecked(); }
    /// Shows the colour instead of the symbol.
    void setSwatch(const QColor &color);
    QColor swatch() const { return m_swatch; }
    QString tooltipText() const { return m_tooltip; }
    /// The modifiers of the press that the last click came from.
    Qt::KeyboardModifiers clickModifiers() const { return m_modifiers; }

    /// The pointer or the keyboard reached the button, or left it.
    std::function<void(ToolbarButton &, bool isPointedAt)> onPointedAt;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void nextCheckState() override { }

private:
    void animate();
    void paintSwatch(QPainter &painter, const QRectF &into) const;

    QString m_symbol;
    QString m_tooltip;
    QColor m_swatch;
    SpringMotion m_scale;
    EaseInMotion m_hover;
    QBasicTimer m_timer;
    QElapsedTimer m_clock;
    Qt::KeyboardModifiers m_modifiers;
    bool m_showsFocus = false; ///< reached by keyboard
};

} // namespace tovek
