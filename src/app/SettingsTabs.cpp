// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/SettingsTabs.h"

#include "KeyboardShortcuts/ShortcutService.h"
#include "app/AboutTabView.h"
#include "app/BundleInformation.h"
#include "app/CommandsTabView.h"
#include "app/GeneralTabView.h"
#include "app/ProgramCommand.h"
#include "app/ShortcutsTabView.h"
#include "foundation/Symbol.h"
#include "foundation/UserDefaults.h"
#include "platform/Clipboard.h"
#include "platform/HotKeys.h"
#include "platform/KeyboardHold.h"
#include "platform/LoginItem.h"
#include "platform/Platform.h"
#include "platform/SystemShortcuts.h"
#include "update/UpdaterManager.h"

#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QIcon>

namespace tovek {

namespace {

constexpr double iconSize = 15;
const QString takenKeys = QStringLiteral("KeysTakenFromDesktop");

QString symbolOf(SettingsTab tab)
{
    switch (tab) {
    case SettingsTab::general:
        return QStringLiteral("gearshape");
    case SettingsTab::shortcuts:
        return QStringLiteral("command");
    case SettingsTab::about:
        return QStringLiteral("info.circle");
    }
    Q_UNREACHABLE();
}

} // namespace

SettingsTabs::SettingsTabs(Platform &platform, UserDefaults &defaults,
                           UpdaterManager &updaterManager)
    : m_platform(platform)
    , m_defaults(defaults)
    , m_updaterManager(updaterManager)
{
    const auto addItem = [this](const QString &title, const QKeySequence &keys,
                                std::function<void()> SettingsTabs::*chosen) {
        auto *item = new QAction(title, &m_menuItems);
        item->setShortcut(keys);
        QObject::connect(item, &QAction::triggered, &m_menuItems, [this, chosen] {
            if (this->*chosen)
                (this->*chosen)();
        });
        m_mainMenu.append(item);
    };
    addItem(QStringLiteral("Preferences..."), QKeySequence(Qt::CTRL | Qt::Key_Comma),
            &SettingsTabs::openPreferences);
    addItem(QStringLiteral("Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), &SettingsTabs::quit);
}

QWidget *SettingsTabs::make(SettingsTab tab, QWidget *parent)
{
    switch (tab) {
    case SettingsTab::general:
        return makeGeneral(parent);
    case SettingsTab::shortcuts:
        return makeShortcuts(parent);
    case SettingsTab::about:
        return new AboutTabView(
            BundleInformation::standard(), [](const QUrl &url) { QDesktopServices::openUrl(url); },
            parent);
    }
    Q_UNREACHABLE();
}

QIcon SettingsTabs::icon(SettingsTab tab, const QWidget &window) const
{
    const auto symbol = Symbol::named(symbolOf(tab));
    if (!symbol)
        return {};
    const QColor color = window.palette().color(QPalette::WindowText);
    return QPixmap::fromImage(symbol->image(iconSize, qApp->devicePixelRatio(), color));
}

QWidget *SettingsTabs::makeGeneral(QWidget *parent)
{
    return new GeneralTabView({m_defaults, *m_platform.loginItem, m_updaterManager,
                               setStatusItemVisible, m_platform.frontmostApp.get()},
                              parent);
}

QWidget *SettingsTabs::makeShortcuts(QWidget *parent)
{
    const HotKeys &keys = *m_platform.hotKeys;
    if (keys.commandBinding({}, programCommand()))
        return new CommandsTabView(
            programCommand(),
            [&keys](KeyCombo key, const QString &command) {
                return keys.commandBinding(key, command);
            },
            [this](const QString &text) { m_platform.clipboard->setText(text); }, parent);
    KeyboardShortcuts::RecorderSetup setup;
    setup.mainMenu = [this] { return m_mainMenu; };
    setup.systemShortcuts = m_platform.systemShortcuts.get();
    setup.holdKeyboard = [hold = m_platform.keyboardHold.get()](QWidget &recorder, bool isHeld) {
        isHeld ? recorder.grabKeyboard() : recorder.releaseKeyboard();
        if (hold)
            hold->hold(isHeld ? recorder.window()->windowHandle() : nullptr);
    };
    auto *view = new ShortcutsTabView(KeyboardShortcuts::ShortcutService::shared(), setup, parent);
    view->setTakenKeys({
        [this] { return m_defaults.string(takenKeys).value_or(QString()); },
        [this](const QString &taken) {
            if (taken.isEmpty())
                m_defaults.remove(takenKeys);
            else
                m_defaults.setString(takenKeys, taken);
        },
    });
    return view;
}

} // namespace tovek
