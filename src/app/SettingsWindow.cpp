// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/SettingsWindow.h"

#include <QCloseEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QTabWidget>
#include <QVBoxLayout>

namespace tovek {

SettingsWindow::SettingsWindow(AppState &state, const Content &content)
    : m_state(state)
    , m_content(content)
    , m_tabs(new QTabWidget(this))
{
    setObjectName(QStringLiteral("settings"));
    setAttribute(Qt::WA_DeleteOnClose);
    m_tabs->setDocumentMode(true);
    m_tabs->setAccessibleName(tr("Settings"));
    for (const SettingsTab tab : {SettingsTab::general, SettingsTab::shortcuts, SettingsTab::about})
        m_tabs->addTab(content.make(tab, m_tabs), content.icon(tab, *this), titleOf(tab));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 0);
    layout->addWidget(m_tabs);
    fitTexts();

    connect(m_tabs, &QTabWidget::currentChanged, this, [this](int index) {
        m_state.setSelectedSettingsTab(SettingsTab(index));
        setWindowTitle(titleOf(SettingsTab(index)));
    });
    connect(&m_state, &AppState::selectedSettingsTabChanged, this, &SettingsWindow::showTab);
    showTab(m_state.selectedSettingsTab());
}

bool SettingsWindow::event(QEvent *event)
{
    const bool isHandled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest)
        fitTexts();
    return isHandled;
}

void SettingsWindow::fitTexts()
{
    setFixedSize(contentSize.expandedTo(layout()->totalMinimumSize()));
}

void SettingsWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange)
        return;
    for (int tab = 0; tab < m_tabs->count(); ++tab)
        m_tabs->setTabIcon(tab, m_content.icon(SettingsTab(tab), *this));
}

void SettingsWindow::closeEvent(QCloseEvent *event)
{
    Q_EMIT willClose();
    QWidget::closeEvent(event);
}

void SettingsWindow::keyPressEvent(QKeyEvent *event)
{
    const bool closes = event->key() == Qt::Key_Escape
        || (event->key() == Qt::Key_W && event->modifiers() == Qt::ControlModifier);
    if (closes)
        close();
    else
        QWidget::keyPressEvent(event);
}

void SettingsWindow::showTab(SettingsTab tab)
{
    m_tabs->setCurrentIndex(int(tab));
    setWindowTitle(titleOf(tab));
}

} // namespace tovek
