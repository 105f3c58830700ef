// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/ShortcutService.h"
#include "fakes/FakeHotKeys.h"
#include "fakes/FakeKeyboardLayout.h"
#include "foundation/UserDefaults.h"
#include "support/StdoutCapture.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace KeyboardShortcuts;
using tovek::KeyCombo;

namespace {

constexpr Shortcut copy{8, 0x1100};
constexpr Shortcut paste{9, 0x1100};
constexpr KeyCombo copyKeys{8, 0x1100};
constexpr KeyCombo pasteKeys{9, 0x1100};
const QString copyJson = QStringLiteral("{\"carbonKeyCode\":8,\"carbonModifiers\":4352}");

} // namespace

class TestShortcutService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
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
    void cleanup() { m_service.reset(); }

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

    // Dispatch

    void runsKeyUpActionsAtTheRelease()
    {
        m_service->setShortcut(m_a, copy);
        m_service->onKeyUp(m_a, run("up"));
        m_service->onKeyUp(m_a, run("up too"));
        m_service->onKeyDown(m_a, run("down"));
        QVERIFY(m_hotKeys->press(copyKeys));
        QCOMPARE(m_runs, QStringList{QStringLiteral("down")});
        m_hotKeys->releaseKey();
        QCOMPARE(
            m_runs,
            QStringList({QStringLiteral("down"), QStringLiteral("up"), QStringLiteral("up too")}));
    }

    void registersOnceHoweverManyActions()
    {
        m_service->setShortcut(m_a, copy);
        m_service->onKeyUp(m_a, run("1"));
        m_service->onKeyDown(m_a, run("2"));
        m_service->onKeyUp(m_a, run("3"));
        QCOMPARE(m_hotKeys->grabbed, (std::map<quint32, KeyCombo>{{1, copyKeys}}));
    }

    void registersWhatIsStoredWithTheFirstAction()
    {
        put("{\"KeyboardShortcuts_a\": \"" + copyJson.toUtf8().replace('"', "\\\"") + "\"}");
        QVERIFY(m_hotKeys->grabbed.empty());
        m_service->onKeyDown(m_a, run("a"));
        QCOMPARE(m_hotKeys->grabbed.size(), size_t(1));
    }

    void findsActionsByWhatIsStoredAtThePress()
    {
        m_service->onKeyUp(m_a, run("a"));
        m_service->onKeyUp(m_b, run("b"));
        QVERIFY(m_hotKeys->grabbed.empty());
        m_service->setShortcut(m_a, copy);
        m_hotKeys->tap(copyKeys);
        m_service->setShortcut(m_a, paste);
        QVERIFY(!m_hotKeys->tap(copyKeys));
        m_hotKeys->tap(pasteKeys);
        m_service->setShortcut(m_a, std::nullopt);
        QVERIFY(!m_hotKeys->tap(pasteKeys));
        m_service->setShortcut(m_b, paste);
        m_hotKeys->tap(pasteKeys);
        QCOMPARE(m_runs,
                 QStringList({QStringLiteral("a"), QStringLiteral("a"), QStringLiteral("b")}));
    }

    void runsEveryNameWithTheShortcut()
    {
        m_service->setShortcut(m_a, copy);
        m_service->setShortcut(m_b, copy);
        QCOMPARE(m_hotKeys->grabbed.size(), size_t(1));
        m_service->onKeyUp(m_b, run("b"));
        m_service->onKeyUp(m_a, run("a"));
        m_hotKeys->tap(copyKeys);
        QCOMPARE(m_runs, QStringList({QStringLiteral("b"), QStringLiteral("a")}));
    }

    void runsNothingWhileARecorderRecords()
    {
        m_service->setShortcut(m_a, copy);
        m_service->onKeyUp(m_a, run("up"));
        m_service->onKeyDown(m_a, run("down"));
        m_service->onPrepare = run("prepare");
        m_service->setPaused(true);
        QVERIFY(m_hotKeys->tap(copyKeys)); // stays registered
        QVERIFY(m_runs.isEmpty());
        m_service->setPaused(false);
        m_hotKeys->tap(copyKeys);
        QCOMPARE(
            m_runs,
            QStringList({QStringLiteral("prepare"), QStringLiteral("down"), QStringLiteral("up")}));
    }

    void runsNothingAtTheReleaseOfWhatARecorderSaw()
    {
        m_service->setShortcut(m_a, copy);
        m_service->onKeyUp(m_a, run("up"));
        m_service->setPaused(true);
        m_hotKeys->press(copyKeys);
        m_service->setPaused(false);
        m_hotKeys->releaseKey();
        QVERIFY(m_runs.isEmpty());

        m_hotKeys->press(copyKeys);
        m_service->setPaused(true);
        m_service->setPaused(false);
        m_hotKeys->releaseKey();
        QVERIFY(m_runs.isEmpty());

        m_service->setPaused(true);
        m_hotKeys->press(copyKeys);
        m_service->setShortcut(m_a, copy);
        m_service->setPaused(false);
        m_hotKeys->releaseKey();
        QVERIFY(m_runs.isEmpty());
        m_hotKeys->tap(copyKeys);
        QCOMPARE(m_runs, QStringList{QStringLiteral("up")});
    }

    void runsNothingWhileItIsNotEnabled()
    {
        m_service->setShortcut(m_a, copy);
        m_service->onKeyUp(m_a, run("up"));
        m_service->setEnabled(false);
        QVERIFY(!m_hotKeys->tap(copyKeys));
        m_service->setEnabled(true);
        m_hotKeys->tap(copyKeys);
        QCOMPARE(m_runs, QStringList{QStringLiteral("up")});
    }

    void runsWhileAMenuIsOpen()
    {
        m_service->setShortcut(m_a, copy);
        m_service->onKeyUp(m_a, run("up"));
        m_service->setMenuOpen(true);
        QVERIFY(m_hotKeys->tap(copyKeys));
        QVERIFY(!m_hotKeys->tap(pasteKeys));
        QCOMPARE(m_runs, QStringList{QStringLiteral("up")});
    }

    void preparesOnlyWhatWillAct()
    {
        m_service->onPrepare = run("prepare");
        m_service->setShortcut(m_a, copy);
        m_hotKeys->tap(copyKeys);
        QVERIFY(m_runs.isEmpty());
        m_service->onKeyUp(m_a, run("up"));
        m_hotKeys->press(copyKeys);
        QCOMPARE(m_runs, QStringList{QStringLiteral("prepare")});
    }

    void letsAnActionSubscribeOthers()
    {
        m_service->setShortcut(m_a, copy);
        m_service->onKeyUp(m_a, [this] {
            for (int count = 0; count < 50; ++count)
                m_service->onKeyUp(m_a, run("late"));
        });
        m_hotKeys->tap(copyKeys);
        QVERIFY(m_runs.isEmpty());
    }

    // The rest of the front end

    void reportsARefusedShortcutOnce()
    {
        m_hotKeys->foreign = {copyKeys};
        tovek::StdoutCapture output;
        m_service->setShortcut(m_a, copy);
        QCOMPARE(QString::fromUtf8(output.take()),
                 QStringLiteral("Error registering hotkey ⌃⌘C: 10\n"));
        m_service->setShortcut(m_b, paste);
        QCOMPARE(output.take(), QByteArray());
        QCOMPARE(m_service->shortcut(m_a), std::optional(copy));
        m_service->onKeyUp(m_b, run("b"));
        m_hotKeys->tap(pasteKeys);
        QCOMPARE(m_runs, QStringList{QStringLiteral("b")});
    }

    void asksAgainForARefusedShortcutWhenItMayBeFree()
    {
        m_hotKeys->foreign = {copyKeys};
        tovek::StdoutCapture output;
        m_service->setShortcut(m_a, copy);
        m_service->onKeyUp(m_a, run("a"));
        m_service->setShortcut(m_b, paste);
        QVERIFY(m_service->isRefused(copy));
        QVERIFY(!m_service->isRefused(paste));
        QVERIFY(m_hotKeys->watchesForFreedKeys);
        int changes = 0;
        const auto token =
            m_service->notifications().observe(registrationDidChange, [&](auto &) { ++changes; });
        m_service->retryRefused();
        QVERIFY(m_service->isRefused(copy));
        QCOMPARE(changes, 0);
        m_hotKeys->freeAll();
        QVERIFY(!m_service->isRefused(copy));
        QCOMPARE(changes, 1);
        QVERIFY(!m_hotKeys->watchesForFreedKeys);
        m_hotKeys->tap(copyKeys);
        QCOMPARE(m_runs, QStringList{QStringLiteral("a")});
        QCOMPARE(output.take().count('\n'), 1); // nobody needs to read of every try
    }

    void asksAgainForWhatItCouldNotTakeBackAfterAMenu()
    {
        m_service->setShortcut(m_a, copy);
        m_service->onKeyUp(m_a, run("a"));
        m_service->setMenuOpen(true);
        QVERIFY(!m_service->isRefused(copy));
        m_hotKeys->foreign = {copyKeys};
        tovek::StdoutCapture output;
        m_service->setMenuOpen(false);
        QVERIFY(m_service->isRefused(copy));
        m_hotKeys->freeAll();
        m_hotKeys->tap(copyKeys);
        QCOMPARE(m_runs, QStringList{QStringLiteral("a")});
    }

    void forgetsARefusedShortcutThatIsRemoved()
    {
        m_hotKeys->foreign = {copyKeys};
        tovek::StdoutCapture output;
        m_service->setShortcut(m_a, copy);
        m_service->setShortcut(m_a, std::nullopt);
        QVERIFY(!m_service->isRefused(copy));
        QVERIFY(!m_hotKeys->watchesForFreedKeys);
        m_hotKeys->freeAll();
        QVERIFY(m_hotKeys->grabbed.empty());
    }

    void keepsTheKeysThatAnotherNameStillUses_data()
    {
        QTest::addColumn<std::optional<Shortcut>>("next");
        QTest::newRow("removed") << std::optional<Shortcut>();
        QTest::newRow("replaced") << std::optional(paste);
    }
    void keepsTheKeysThatAnotherNameStillUses()
    {
        QFETCH(std::optional<Shortcut>, next);
        m_service->setShortcut(m_a, copy);
        m_service->setShortcut(m_b, copy);
        m_service->onKeyUp(m_b, run("b"));
        QCOMPARE(m_service->otherName(copy, m_a), std::optional(m_b));
        m_service->setShortcut(m_a, next);
        QCOMPARE(m_service->otherName(copy, m_b), std::nullopt);
        m_hotKeys->tap(copyKeys);
        QCOMPARE(m_runs, QStringList{QStringLiteral("b")});
        m_service->setShortcut(m_b, std::nullopt);
        QVERIFY(!m_hotKeys->tap(copyKeys));
    }

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

private:
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

QTEST_APPLESS_MAIN(TestShortcutService)
#include "tst_ShortcutService.moc"
