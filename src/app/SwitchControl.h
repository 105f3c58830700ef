// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QCheckBox>

class QVariantAnimation;

namespace tovek {

/// An on/off switch: a check box in all but its look.
class SwitchControl : public QCheckBox
{
    Q_OBJECT

public:
    /// Around what is seen of the switch, on each side.
    static constexpr int ringRoom = 3;

    explicit SwitchControl(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
    bool hitButton(const QPoint &at) const override { return rect().contains(at); }

private:
    void slide(bool isOn);

    QVariantAnimation *m_slide;
    double m_position = 0; ///< of the knob: 0 is off, 1 is on
};

} // namespace tovek
