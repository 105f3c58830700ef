// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "app/AppState.h"

#include <QWidget>

#include <functional>

class QIcon;
class QTabWidget;

namespace tovek {

/// The settings, on three tabs. Its title is the label of the visible tab.
class SettingsWindow : public QWidget
{
    Q_OBJECT

public:
    /// Without a frame, where no text needs more.
    static constexpr QSize contentSize{450, 260};

    /// Gives the content and the symbol of a tab; its parent is given.
    struct Content
    {
        std::function<QWidget *(SettingsTab tab, QWidget *parent)> make;
        std::function<QIcon(SettingsTab tab, const QWidget &window)> icon;
    };

    SettingsWindow(AppState &state, const Content &content);

Q_SIGNALS:
    void willClose();

protected:
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void fitTexts();
    void showTab(SettingsTab tab);

    AppState &m_state;
    Content m_content;
    QTabWidget *m_tabs;
};

} // namespace tovek
