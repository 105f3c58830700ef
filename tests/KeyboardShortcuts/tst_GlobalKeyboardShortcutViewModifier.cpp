// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/GlobalKeyboardShortcutViewModifier.h"
#include "KeyboardShortcuts/ShortcutService.h"
#include "fakes/FakeHotKeys.h"
#include "fakes/FakeKeyboardLayout.h"
#include "foundation/UserDefaults.h"

#include <QAction>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

using namespace KeyboardShortcuts;

class TestGlobalKeyboardShortcutViewModifier : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_dir = std::make_unique<QTemporaryDir>();
        m_defaults =
            std::make_unique<tovek::UserDefaults>(m_dir->filePath(QStringLiteral("defaults.json")));
        m_layout.characters = {{8, QStringLiteral("c")}};
        m_service = std::make_unique<ShortcutService>(*m_defaults, m_hotKeys, m_layout);
        m_name = m_service->createName(QStringLiteral("name"));
    }
    void cleanup() { m_service.reset(); }

    void followsItsName()
    {
        QPushButton view;
        new GlobalKeyboardShortcutViewModifier(view, m_name, *m_service);
        QVERIFY(view.shortcut().isEmpty());
        m_service->setShortcut(m_name, copy);
        QCOMPARE(view.shortcut(), QKeySequence(QStringLiteral("Ctrl+Shift+C")));
        m_service->setShortcut(m_service->createName(QStringLiteral("other")), Shortcut{96, 0});
        QCOMPARE(view.shortcut(), QKeySequence(QStringLiteral("Ctrl+Shift+C")));
        m_layout.change({{8, QStringLiteral("j")}});
        QCOMPARE(view.shortcut(), QKeySequence(QStringLiteral("Ctrl+Shift+J")));
        m_layout.change({});
        QVERIFY(view.shortcut().isEmpty());
        m_layout.change({{8, QStringLiteral("c")}});
        m_service->setShortcut(m_name, std::nullopt);
        QVERIFY(view.shortcut().isEmpty());
    }

    void answersNothingWhileARecorderRecords()
    {
        m_service->setShortcut(m_name, copy);
        QAction view;
        new GlobalKeyboardShortcutViewModifier(view, m_name, *m_service);
        QCOMPARE(view.shortcut(), QKeySequence(QStringLiteral("Ctrl+Shift+C")));
        post(true);
        QVERIFY(view.shortcut().isEmpty());
        m_service->setShortcut(m_name, Shortcut{96, 0});
        QVERIFY(view.shortcut().isEmpty());
        post(false);
        QCOMPARE(view.shortcut(), QKeySequence(QStringLiteral("F5")));
    }

private:
    static constexpr Shortcut copy{8, 0x1200};

    void post(bool isActive)
    {
        m_service->notifications().post(recorderActiveStatusDidChange,
                                        {{QStringLiteral("isActive"), isActive}});
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<tovek::UserDefaults> m_defaults;
    tovek::FakeHotKeys m_hotKeys;
    tovek::FakeKeyboardLayout m_layout;
    std::unique_ptr<ShortcutService> m_service;
    Name m_name;
};

QTEST_MAIN(TestGlobalKeyboardShortcutViewModifier)
#include "tst_GlobalKeyboardShortcutViewModifier.moc"
