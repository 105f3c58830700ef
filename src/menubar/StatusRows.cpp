// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "menubar/StatusRows.h"

#include "foundation/MainThread.h"

#include <QMenu>

namespace tovek {

namespace {

struct MenuRow
{
    const char *title; ///< null for a separator
    std::function<void()> StatusRows::Actions::*action;
    const char *shortcutName; ///< of the shortcut whose keys label the item
    QKeyCombination keyEquivalent;
};

// clang-format off
const MenuRow menuRows[] {
    {"Start Capture",        &StatusRows::Actions::startCapture,    "captureScreenshot", Qt::Key_unknown},
    {nullptr, nullptr, nullptr, Qt::Key_unknown},
    {"Capture Image",        &StatusRows::Actions::captureImage,    "captureImage",      Qt::Key_unknown},
    {"Capture Text",         &StatusRows::Actions::captureText,     "captureText",       Qt::Key_unknown},
    {nullptr, nullptr, nullptr, Qt::Key_unknown},
    {"Check for Updates...", &StatusRows::Actions::checkForUpdates, nullptr,             Qt::Key_unknown},
    {nullptr, nullptr, nullptr, Qt::Key_unknown},
    {"Preferences...",       &StatusRows::Actions::openPreferences, nullptr,             Qt::CTRL | Qt::Key_Comma},
    {"About",                &StatusRows::Actions::openAbout,       nullptr,             Qt::Key_unknown},
    {nullptr, nullptr, nullptr, Qt::Key_unknown},
    {"Quit",                 &StatusRows::Actions::quit,            nullptr,             Qt::CTRL | Qt::Key_Q},
};
// clang-format on

/// As hosts write the first of the keys.
QStringList hostKeys(const QKeySequence &keys)
{
    if (keys.isEmpty())
        return {};
    const Qt::KeyboardModifiers modifiers = keys[0].keyboardModifiers();
    QStringList names;
    if (modifiers & Qt::ControlModifier)
        names << QStringLiteral("Control");
    if (modifiers & Qt::AltModifier)
        names << QStringLiteral("Alt");
    if (modifiers & Qt::ShiftModifier)
        names << QStringLiteral("Shift");
    if (modifiers & Qt::MetaModifier)
        names << QStringLiteral("Super");
    return names << QKeySequence(keys[0].key()).toString(QKeySequence::PortableText);
}

} // namespace

void StatusRows::addTo(QMenu &menu)
{
    Q_ASSERT(isMainThread());
    for (const MenuRow &row : menuRows) {
        if (!row.title) {
            menu.addSeparator();
            continue;
        }
        QAction *item = menu.addAction(QString::fromLatin1(row.title));
        const bool checksUpdates = row.action == &Actions::checkForUpdates;
        const QString obstacle = checksUpdates && updateObstacle ? updateObstacle() : QString();
        item->setEnabled(actions.*row.action && obstacle.isEmpty());
        item->setToolTip(obstacle);
        if (row.keyEquivalent.key() != Qt::Key_unknown)
            item->setShortcut(row.keyEquivalent);
        if (row.shortcutName && bindShortcut)
            bindShortcut(*item, QString::fromLatin1(row.shortcutName));
        // Queued, so that the menu has gone from the screen before a capture freezes it.
        QObject::connect(
            item, &QAction::triggered, &m_context,
            [this, action = row.action] {
                if (actions.*action)
                    (actions.*action)();
            },
            Qt::QueuedConnection);
    }
}

std::vector<TrayMenuRow> StatusRows::forHost()
{
    m_hostMenu = std::make_unique<QMenu>();
    addTo(*m_hostMenu);
    std::vector<TrayMenuRow> rows;
    for (const QAction *item : m_hostMenu->actions())
        rows.push_back(
            {item->text(), item->isSeparator(), item->isEnabled(), hostKeys(item->shortcut())});
    return rows;
}

void StatusRows::chooseForHost(int row)
{
    if (QAction *item = m_hostMenu ? m_hostMenu->actions().value(row) : nullptr)
        item->trigger();
}

} // namespace tovek
