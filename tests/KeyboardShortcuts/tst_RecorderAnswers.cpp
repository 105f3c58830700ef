// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// What a recorder says of keys that others have, and what it then does.

#include "KeyboardShortcuts/RecorderTest.h"

using namespace KeyboardShortcuts;
using tovek::KeyCombo;

class TestRecorderAnswers : public RecorderTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void refusesWhatAMenuItemAnswersTo()
    {
        m_recorder->setFocus();
        press(Qt::Key_Q, 24, Qt::ControlModifier);
        AlertSheet *alert = sheet();
        QVERIFY(alert);
        QVERIFY(!m_recorder->isRecording());
        QVERIFY(alert->accessibleName().contains(QStringLiteral("“Quit”")));
        QCOMPARE(alert->buttons().size(), 1);
        QCOMPARE(alert->windowModality(), Qt::WindowModal);
        QCOMPARE(alert->parentWidget(), m_window.get());
        alert->buttons().first()->click();
        QTRY_VERIFY(m_recorder->isRecording());
        QVERIFY(!m_service->shortcut(m_name));
        QTRY_VERIFY(!sheet());
    }

    void asksAboutSystemShortcuts_data()
    {
        QTest::addColumn<bool>("isListed");
        QTest::addColumn<int>("button");
        QTest::addColumn<bool>("isStored");
        QTest::newRow("held, left alone") << false << 0 << false;
        QTest::newRow("held, forced") << false << 1 << true;
        QTest::newRow("listed, left alone") << true << 0 << false;
        QTest::newRow("listed, forced") << true << 1 << true;
    }
    void asksAboutSystemShortcuts()
    {
        QFETCH(bool, isListed);
        QFETCH(int, button);
        QFETCH(bool, isStored);
        const KeyCombo taken{0, 0x1000};
        (isListed ? m_system.listed : m_hotKeys->foreign).append(taken);
        m_recorder->setFocus();
        press(Qt::Key_A, scanA, Qt::ControlModifier);
        AlertSheet *alert = sheet();
        QVERIFY(alert);
        QVERIFY(!m_service->shortcut(m_name));
        QCOMPARE(alert->buttons().value(0)->text(), QStringLiteral("OK"));
        QCOMPARE(alert->buttons().value(1)->text(), QStringLiteral("Use Anyway"));
        tovek::LogCapture ignored; // a forced shortcut cannot be registered, which is reported
        alert->buttons().value(button)->click();
        QCOMPARE(m_service->shortcut(m_name).has_value(), isStored);
        QTRY_COMPARE(m_recorder->isRecording(), !isStored);
    }

    void asksBeforeItTakesTheKeysOfAnotherField_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<bool>("isMoved");
        QTest::newRow("left alone") << 0 << false;
        QTest::newRow("moved") << 1 << true;
    }
    void asksBeforeItTakesTheKeysOfAnotherField()
    {
        QFETCH(int, button);
        QFETCH(bool, isMoved);
        const Name other = m_service->createName(QStringLiteral("other"));
        m_service->setShortcut(other, controlA);
        m_recorder->setFocus();
        press(Qt::Key_A, scanA, Qt::ControlModifier);
        AlertSheet *alert = sheet();
        QVERIFY(alert);
        QVERIFY(alert->accessibleName().contains(QStringLiteral("“Other Field”")));
        QVERIFY(!m_service->shortcut(m_name));
        alert->buttons().value(button)->click();
        QCOMPARE(m_service->shortcut(m_name).has_value(), isMoved);
        QCOMPARE(m_service->shortcut(other).has_value(), !isMoved);
        QCOMPARE(m_hotKeys->grabbed.size(), size_t(1));
    }

    void recordsItsOwnKeysAgainWithoutAQuestion()
    {
        m_service->setShortcut(m_name, controlA);
        m_recorder->setFocus();
        press(Qt::Key_A, scanA, Qt::ControlModifier);
        QVERIFY(!sheet());
        QCOMPARE(m_service->shortcut(m_name), std::optional(controlA));
    }

    void marksWhatTheSystemRefused()
    {
        m_hotKeys->foreign = {KeyCombo{0, 0x1000}};
        tovek::LogCapture ignored;
        m_service->setShortcut(m_name, controlA);
        QVERIFY(m_recorder->isRefused());
        QVERIFY(m_recorder->toolTip().startsWith(QStringLiteral("Ctrl+A\n")));
        QVERIFY(m_recorder->toolTip().contains(QStringLiteral("another program")));
        QVERIFY(m_recorder->accessibleDescription().contains(QStringLiteral("another program")));
        const QImage marked = m_recorder->grab().toImage();
        m_hotKeys->freeAll();
        QVERIFY(!m_recorder->isRefused());
        QCOMPARE(m_recorder->toolTip(), QStringLiteral("Ctrl+A"));
        QVERIFY(m_recorder->grab().toImage() != marked);
    }

    void leavesASheetByEscape()
    {
        m_hotKeys->foreign = {KeyCombo{0, 0x1000}};
        m_recorder->setFocus();
        press(Qt::Key_A, scanA, Qt::ControlModifier);
        QTest::keyClick(sheet(), Qt::Key_Escape);
        QVERIFY(!m_service->shortcut(m_name));
    }

    void refusesWhatTheSystemNeverDelivers()
    {
        m_setup.systemMajor = 15;
        m_setup.isSandboxed = true;
        makeWindow();
        m_recorder->setFocus();
        press(Qt::Key_A, scanA, Qt::AltModifier);
        QVERIFY(sheet());
        QVERIFY(!m_service->shortcut(m_name));
        m_setup.systemMajor = 0;
    }

    void recordsAGivenShortcutByTheSameRules()
    {
        m_recorder->record(Shortcut{105, 0});
        QCOMPARE(m_service->shortcut(m_name), std::optional(Shortcut{105, 0}));
        m_service->setShortcut(m_name, std::nullopt);
        m_system.listed = {KeyCombo{105, 0}};
        m_recorder->record(Shortcut{105, 0});
        QVERIFY(sheet());
        QVERIFY(!m_service->shortcut(m_name));
    }
};

QTEST_MAIN(TestRecorderAnswers)
#include "tst_RecorderAnswers.moc"
