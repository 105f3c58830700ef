// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/ShortcutServiceTest.h"
#include "support/StdoutCapture.h"

using namespace KeyboardShortcuts;
using tovek::KeyCombo;

class TestShortcutService : public ShortcutServiceTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    // Storage

    void storesUnderTheName()
    {
        m_service->setShortcut(m_a, copy);
        QCOMPARE(m_defaults->string(QStringLiteral("KeyboardShortcuts_a")),
                 std::optional(copyJson));
        QCOMPARE(m_service->shortcut(m_a), std::optional(copy));
        QCOMPARE(m_service->shortcut(m_b), std::nullopt);
        QCOMPARE(m_changes, QStringList{QStringLiteral("a")});
    }

    void readsWhatIsNoShortcutAsNone_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::newRow("number") << QByteArray("8");
        QTest::newRow("true") << QByteArray("true");
        QTest::newRow("false") << QByteArray("false");
        QTest::newRow("null") << QByteArray("null");
        QTest::newRow("object") << QByteArray("{\"carbonKeyCode\":8,\"carbonModifiers\":4352}");
        QTest::newRow("other text") << QByteArray("\"Ctrl+C\"");
        QTest::newRow("half") << QByteArray("\"{\\\"carbonKeyCode\\\":8}\"");
    }
    void readsWhatIsNoShortcutAsNone()
    {
        QFETCH(QByteArray, value);
        put("{\"KeyboardShortcuts_a\": " + value + "}");
        QCOMPARE(m_service->shortcut(m_a), std::nullopt);
        m_service->onKeyUp(m_a, run("a"));
        QVERIFY(m_hotKeys->grabbed.empty());
        m_service->setShortcut(m_a, copy);
        QCOMPARE(m_defaults->string(m_a.key()), std::optional(copyJson));
    }

    void survivesAShortcutThatNoKeyboardCanHave_data()
    {
        QTest::addColumn<QByteArray>("keys");
        QTest::newRow("negative key code")
            << QByteArray(R"({"carbonKeyCode":-1,"carbonModifiers":0})");
        QTest::newRow("key code beyond 32 bits")
            << QByteArray(R"({"carbonKeyCode":4294967296,"carbonModifiers":0})");
        QTest::newRow("negative modifiers")
            << QByteArray(R"({"carbonKeyCode":8,"carbonModifiers":-256})");
    }
    void survivesAShortcutThatNoKeyboardCanHave()
    {
        QFETCH(QByteArray, keys);
        const QByteArray value = QByteArray(keys).replace('"', "\\\"");
        put("{\"KeyboardShortcuts_a\": \"" + value + "\"}");
        tovek::StdoutCapture output;
        m_service->onKeyUp(m_a, run("a"));
        m_service->onKeyUp(m_a, run("a"));
        QCOMPARE(output.take(), "Stored shortcut a is none: " + keys + "\n");
        QCOMPARE(m_service->shortcut(m_a), std::nullopt);
        m_service->onKeyUp(m_b, run("b"));
        m_service->setShortcut(m_b, paste);
        m_service->setShortcut(m_a, copy);
        m_hotKeys->tap(pasteKeys);
        QCOMPARE(m_runs, QStringList{QStringLiteral("b")});
    }

    void removes()
    {
        m_service->setShortcut(m_a, copy);
        m_service->setShortcut(m_a, std::nullopt);
        QVERIFY(!m_defaults->contains(m_a.key()));
        QVERIFY(m_hotKeys->grabbed.empty());
        QCOMPARE(m_changes, QStringList({QStringLiteral("a"), QStringLiteral("a")}));
    }

    void saysNothingWhenThereIsNothingToRemove()
    {
        m_service->setShortcut(m_a, std::nullopt);
        QVERIFY(m_changes.isEmpty());
        QVERIFY(!m_defaults->contains(m_a.key()));
        QVERIFY(!QFile::exists(m_defaults->path()));
    }

    void storesTheSameShortcutAgain()
    {
        m_service->setShortcut(m_a, copy);
        m_service->setShortcut(m_a, copy);
        QCOMPARE(m_changes.size(), 2);
        QCOMPARE(m_hotKeys->grabbed, (std::map<quint32, KeyCombo>{{2, copyKeys}}));
        QCOMPARE(m_defaults->string(m_a.key()), std::optional(copyJson));
    }

    void replaces()
    {
        m_service->setShortcut(m_a, copy);
        m_service->setShortcut(m_a, paste);
        QCOMPARE(m_hotKeys->grabbed, (std::map<quint32, KeyCombo>{{2, pasteKeys}}));
    }

    void tellsWhenTheShortcutIsThereAlready()
    {
        std::optional<Shortcut> seen;
        const auto token = m_service->notifications().observe(
            shortcutByNameDidChange, [&](const QVariantMap &info) {
                seen = m_service->shortcut(info["name"].value<Name>());
            });
        m_service->setShortcut(m_a, copy);
        QCOMPARE(seen, std::optional(copy));
    }

    void appliesADefaultOnce()
    {
        Name name = m_service->createName(QStringLiteral("d"), copy);
        QCOMPARE(m_service->shortcut(name), std::optional(copy));
        QCOMPARE(m_changes, QStringList{QStringLiteral("d")});
        m_service->createName(QStringLiteral("d"), paste);
        QCOMPARE(m_service->shortcut(name), std::optional(copy));
        QCOMPARE(m_changes.size(), 1);
    }

    void remembersThatTheUserRemovedADefault()
    {
        Name name = m_service->createName(QStringLiteral("d"), copy);
        m_service->setShortcut(name, std::nullopt);
        QCOMPARE(m_defaults->boolean(name.key()), std::optional(false));
        start();
        name = m_service->createName(QStringLiteral("d"), copy);
        QCOMPARE(m_service->shortcut(name), std::nullopt);
        QVERIFY(m_hotKeys->grabbed.empty());
    }

    void keepsShortcutsForTheNextProcess()
    {
        m_service->setShortcut(m_a, copy);
        start();
        m_service->onKeyUp(m_a, run("a"));
        m_hotKeys->tap(copyKeys);
        QCOMPARE(m_runs, QStringList{QStringLiteral("a")});
    }

    // The rest of the front end

    void knowsWhatTheSystemUses()
    {
        m_hotKeys->foreign = {copyKeys};
        QVERIFY(m_service->isSystemShortcut(copy));
        QVERIFY(m_service->isSystemShortcut({8, 0x1100 | 0x400}));
        QVERIFY(!m_service->isSystemShortcut(paste));
        QVERIFY(!m_service->isSystemShortcut({-1, 0}));
        QVERIFY(!m_service->isSystemShortcut({8 + (1LL << 32), 0x1100}));
    }

    void tellsOfAnotherLayout()
    {
        int changes = 0;
        const auto token =
            m_service->notifications().observe(keyboardLayoutDidChange, [&](auto &) { ++changes; });
        QCOMPARE(m_service->description(copy), QStringLiteral("⌃⌘C"));
        m_layout->change({{8, QStringLiteral("x")}});
        QCOMPARE(changes, 1);
        QCOMPARE(m_service->description(copy), QStringLiteral("⌃⌘X"));
    }

    void isOneForTheProcess()
    {
        ShortcutService *service = m_service.get();
        ShortcutService::setShared(std::move(m_service));
        QCOMPARE(&ShortcutService::shared(), service);
        ShortcutService::setShared(nullptr);
    }

    void knowsItsSandbox()
    {
        QVERIFY(!isSandboxed());
        qputenv("APP_SANDBOX_CONTAINER_ID", "x");
        QVERIFY(!isSandboxed()); // found out once
        qunsetenv("APP_SANDBOX_CONTAINER_ID");
    }
};

QTEST_APPLESS_MAIN(TestShortcutService)
#include "tst_ShortcutService.moc"
