// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QDialog>

class QPushButton;

namespace KeyboardShortcuts {

/// A message with buttons, on the window of a widget, which waits until one is chosen. `finished`
/// carries the number of the button; the sheet then deletes itself.
class AlertSheet : public QDialog
{
    Q_OBJECT

public:
    enum class Style { plain, warning };
    struct Content
    {
        QString message;
        QString information; ///< smaller, below the message; may be empty
        QStringList buttons; ///< the first is the default one, and what Escape chooses
        Style style = Style::plain;
    };

    /// Modal for the owner's window; for all of the program where the owner has none.
    AlertSheet(const Content &content, QWidget &owner);

    QList<QPushButton *> buttons() const { return m_buttons; }

private:
    QList<QPushButton *> m_buttons;
};

} // namespace KeyboardShortcuts
