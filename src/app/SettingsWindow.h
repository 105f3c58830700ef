// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "app/AppState.h"

#include <QWidget>

class QTabWidget;

namespace tovek {

/// The settings, on three tabs. Its title is the label of the visible tab.
class SettingsWindow : public QWidget
{
    Q_OBJECT

public:
    static constexpr QSize contentSize{450, 260};

    explicit SettingsWindow(AppState &state);

Q_SIGNALS:
    void willClose();

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void showTab(SettingsTab tab);

    AppState &m_state;
    QTabWidget *m_tabs;
};

} // namespace tovek
