// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "KeyboardShortcuts/AlertSheet.h"
#include "KeyboardShortcuts/RecorderCocoa.h"
#include "KeyboardShortcuts/ShortcutService.h"
#include "fakes/FakeHotKeys.h"
#include "fakes/FakeKeyboardLayout.h"
#include "fakes/FakeSystemShortcuts.h"
#include "fakes/LogCapture.h"
#include "foundation/UserDefaults.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>

namespace KeyboardShortcuts {

// Codes of the window system.
inline constexpr quint32 scanA = 38;
inline constexpr quint32 scanTab = 23;
inline constexpr quint32 scanEscape = 9;
inline constexpr quint32 scanBackspace = 22;
inline constexpr quint32 scanF5 = 71;
inline constexpr quint32 scanPrint = 107;
inline constexpr quint32 scanControl = 37;

inline const Shortcut controlA{0, 0x1000};

/// What tests of the recorder share: a recorder in a window with another widget, over fakes.
class RecorderTest : public QObject
{
protected:
    void begin()
    {
        // The offscreen platform says what it cannot do with windows.
        QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not)")));
        m_dir = std::make_unique<QTemporaryDir>();
        m_defaults =
            std::make_unique<tovek::UserDefaults>(m_dir->filePath(QStringLiteral("defaults.json")));
        m_hotKeys = std::make_unique<tovek::FakeHotKeys>();
        m_layout.characters = {{0, QStringLiteral("a")}, {12, QStringLiteral("q")}};
        m_service = std::make_unique<ShortcutService>(*m_defaults, *m_hotKeys, m_layout);
        m_name = m_service->createName(QStringLiteral("name"));
        m_system = {};
        m_beeps = 0;
        m_changes.clear();
        m_activity.clear();
        m_token = m_service->notifications().observe(
            recorderActiveStatusDidChange, [this](const QVariantMap &userInfo) {
                m_activity.append(userInfo.value(QStringLiteral("isActive")).toBool());
            });
        makeWindow();
    }
    void end()
    {
        m_window.reset();
        m_token.reset();
        m_service.reset();
    }
    void makeWindow()
    {
        m_window = std::make_unique<QWidget>();
        auto *layout = new QVBoxLayout(m_window.get());
        layout->setContentsMargins(30, 30, 30, 30);
        m_setup.beep = [this] { ++m_beeps; };
        m_setup.systemShortcuts = &m_system;
        m_setup.titleOf = [](const Name &name) {
            return name.rawValue == QStringLiteral("other") ? QStringLiteral("Other Field")
                                                            : name.rawValue;
        };
        m_setup.mainMenu = [this] { return QList<QAction *>{&m_quit}; };
        m_quit.setText(QStringLiteral("&Quit"));
        m_quit.setShortcut(QKeySequence(QStringLiteral("Ctrl+Q")));
        m_recorder = new RecorderCocoa(m_name, *m_service, m_setup, m_window.get());
        m_recorder->onChange = [this](const auto &shortcut) { m_changes.append(shortcut); };
        m_other = new QPushButton(QStringLiteral("other"), m_window.get());
        layout->addWidget(m_recorder);
        layout->addWidget(m_other);
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_other->setFocus();
        m_activity.clear();
    }
    void press(Qt::Key key, quint32 scanCode, Qt::KeyboardModifiers modifiers = {})
    {
        QKeyEvent down(QEvent::KeyPress, key, modifiers, scanCode, 0, 0);
        QCoreApplication::sendEvent(m_recorder, &down);
    }
    /// A place in the recorder's coordinates.
    void clickAt(QPoint place)
    {
        const QPoint inWindow = m_recorder->mapTo(m_window.get(), place);
        QTest::mouseClick(m_window.get(), Qt::LeftButton, {}, inWindow);
    }
    AlertSheet *sheet() const { return m_window->findChild<AlertSheet *>(); }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<tovek::UserDefaults> m_defaults;
    std::unique_ptr<tovek::FakeHotKeys> m_hotKeys;
    tovek::FakeKeyboardLayout m_layout;
    tovek::FakeSystemShortcuts m_system;
    std::unique_ptr<ShortcutService> m_service;
    Name m_name;
    QAction m_quit;
    RecorderSetup m_setup;
    std::unique_ptr<QWidget> m_window;
    RecorderCocoa *m_recorder = nullptr;
    QPushButton *m_other = nullptr;
    int m_beeps = 0;
    QList<std::optional<Shortcut>> m_changes;
    QList<bool> m_activity;
    NotificationCenter::Token m_token;
};

} // namespace KeyboardShortcuts
