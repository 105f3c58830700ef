// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "KeyboardShortcuts/ShortcutService.h"
#include "fakes/FakeHotKeys.h"
#include "fakes/FakeKeyboardLayout.h"
#include "foundation/UserDefaults.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace KeyboardShortcuts {

inline constexpr Shortcut copy{8, 0x1100};
inline constexpr Shortcut paste{9, 0x1100};
inline constexpr tovek::KeyCombo copyKeys{8, 0x1100};
inline constexpr tovek::KeyCombo pasteKeys{9, 0x1100};
inline const QString copyJson = QStringLiteral("{\"carbonKeyCode\":8,\"carbonModifiers\":4352}");

/// What tests of the service share: a service with two names over fakes, and what it told.
class ShortcutServiceTest : public QObject
{
protected:
    void begin()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_service.reset();
        m_dir = std::make_unique<QTemporaryDir>();
        m_hotKeys = std::make_unique<tovek::FakeHotKeys>();
        m_layout = std::make_unique<tovek::FakeKeyboardLayout>();
        m_layout->characters = {{8, QStringLiteral("c")}, {9, QStringLiteral("v")}};
        start();
        m_runs.clear();
        m_changes.clear();
    }
    void end() { m_service.reset(); }
    void start()
    {
        m_service.reset();
        m_defaults =
            std::make_unique<tovek::UserDefaults>(m_dir->filePath(QStringLiteral("defaults.json")));
        m_service = std::make_unique<ShortcutService>(*m_defaults, *m_hotKeys, *m_layout);
        m_token = m_service->notifications().observe(
            shortcutByNameDidChange, [this](const QVariantMap &info) {
                m_changes << info.value(QStringLiteral("name")).value<Name>().rawValue;
            });
        m_a = m_service->createName(QStringLiteral("a"));
        m_b = m_service->createName(QStringLiteral("b"));
    }
    void put(const QByteArray &json)
    {
        QFile file(m_dir->filePath(QStringLiteral("defaults.json")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(json);
        file.close();
        start();
    }
    ShortcutService::Action run(const char *mark)
    {
        return [this, mark] { m_runs << QString::fromLatin1(mark); };
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<tovek::FakeHotKeys> m_hotKeys;
    std::unique_ptr<tovek::FakeKeyboardLayout> m_layout;
    std::unique_ptr<tovek::UserDefaults> m_defaults;
    std::unique_ptr<ShortcutService> m_service;
    NotificationCenter::Token m_token;
    Name m_a;
    Name m_b;
    QStringList m_runs;
    QStringList m_changes;
};

} // namespace KeyboardShortcuts
