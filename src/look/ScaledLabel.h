// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QLabel>

namespace tovek {

/// A label in the desktop's font, larger or smaller by a factor, also when the desktop's font
/// becomes another one.
class ScaledLabel : public QLabel
{
public:
    ScaledLabel(const QString &text, double factor, QWidget *parent,
                QFont::Weight weight = QFont::Normal);

    static QFont scaled(QFont font, double factor);

protected:
    bool event(QEvent *event) override;

private:
    void scale();

    double m_factor;
    QFont::Weight m_weight;
};

} // namespace tovek
