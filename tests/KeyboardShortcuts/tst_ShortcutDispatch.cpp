// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// What runs when keys go down and up, and which keys are asked for.

#include "KeyboardShortcuts/ShortcutServiceTest.h"
#include "support/StdoutCapture.h"

using namespace KeyboardShortcuts;
using tovek::KeyCombo;

class TestShortcutDispatch : public ShortcutServiceTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

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
};

QTEST_APPLESS_MAIN(TestShortcutDispatch)
#include "tst_ShortcutDispatch.moc"
