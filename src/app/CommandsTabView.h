// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"

#include <QWidget>

class QLabel;

namespace tovek {

/// The tab about shortcuts where the desktop gives its keys to no program: what the user writes
/// into the desktop's own settings, line by line, to be copied.
class CommandsTabView : public QWidget
{
    Q_OBJECT

public:
    /// How a key is given to a command; see HotKeys.
    using Binding = std::function<std::optional<CommandBinding>(KeyCombo, const QString &)>;

    CommandsTabView(const QString &program, const Binding &binding,
                    const std::function<void(const QString &)> &copy, QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;

private:
    void colorHint();

    QLabel *m_hint;
};

} // namespace tovek
