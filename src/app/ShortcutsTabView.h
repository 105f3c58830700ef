// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "KeyboardShortcuts/RecorderCocoa.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace tovek {

/// The tab in which the program's shortcuts are recorded.
class ShortcutsTabView : public QWidget
{
    Q_OBJECT

public:
    /// The service, and what the setup points to, must outlive the view.
    ShortcutsTabView(KeyboardShortcuts::ShortcutService &service,
                     const KeyboardShortcuts::RecorderSetup &setup, QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;

private:
    void addUsePrint(KeyboardShortcuts::RecorderCocoa *recorder, QWidget *row);
    void showUsePrint();
    void colorHint();

    KeyboardShortcuts::ShortcutService &m_service;
    QPushButton *m_usePrint = nullptr; ///< offered while the program has no shortcut at all
    QLabel *m_hint;
    KeyboardShortcuts::NotificationCenter::Token m_shortcutToken;
};

} // namespace tovek
