// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QDialog>

class QLabel;
class QPushButton;
class QHBoxLayout;
class QVBoxLayout;

namespace tovek {

/// A window of the updater: the program's icon, a bold line, an explaining text, something below
/// them, and buttons. Escape and the close button reject it.
class UpdateWindow : public QDialog
{
    Q_OBJECT

public:
    enum class Icon { program, warning };
    enum class Side { left, right };

    UpdateWindow(Icon icon, const QString &title, const QString &text);

    void setText(const QString &title, const QString &text);
    /// Below the text, as wide as that.
    void addBody(QWidget *body);
    /// From left to right on each side. `isDefault`: what Return presses.
    QPushButton *addButton(const QString &text, Side side, bool isDefault = false);

private:
    QLabel *m_title;
    QLabel *m_text;
    QVBoxLayout *m_body;
    QHBoxLayout *m_buttons;
    int m_leftButtons = 0;
};

} // namespace tovek
