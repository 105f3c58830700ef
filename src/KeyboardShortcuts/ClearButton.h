// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QToolButton>

namespace KeyboardShortcuts {

/// The small round button with a cross at the end of a field. Does not take the keyboard.
class ClearButton : public QToolButton
{
public:
    explicit ClearButton(QWidget *parent);

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace KeyboardShortcuts
