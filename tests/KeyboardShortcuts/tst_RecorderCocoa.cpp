// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/RecorderTest.h"

using namespace KeyboardShortcuts;
using tovek::KeyCombo;

class TestRecorderCocoa : public RecorderTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void showsTheStoredShortcut()
    {
        QCOMPARE(m_recorder->text(), QString());
        QCOMPARE(m_recorder->placeholderText(), QStringLiteral("Record Shortcut"));
        QVERIFY(!m_recorder->cancelButton()->isVisible());
        m_service->setShortcut(m_name, controlA);
        QCOMPARE(m_recorder->text(), QStringLiteral("⌃A"));
        QVERIFY(m_recorder->cancelButton()->isVisible());
        m_layout.change({{0, QStringLiteral("q")}});
        QCOMPARE(m_recorder->text(), QStringLiteral("⌃Q"));
        const Name other = m_service->createName(QStringLiteral("other"));
        m_service->setShortcut(other, Shortcut{96, 0});
        QCOMPARE(m_recorder->text(), QStringLiteral("⌃Q"));
        m_recorder->setShortcutName(other);
        QCOMPARE(m_recorder->text(), QStringLiteral("F5"));
    }

    void hasItsWidth()
    {
        QCOMPARE(m_recorder->sizeHint().width(), 130);
        QCOMPARE(m_recorder->alignment(), Qt::AlignCenter);
    }

    void recordsWhileItHasTheKeyboard()
    {
        QVERIFY(!m_recorder->isRecording());
        m_recorder->setFocus();
        QVERIFY(m_recorder->isRecording());
        QCOMPARE(m_recorder->placeholderText(), QStringLiteral("Press Shortcut"));
        QVERIFY(m_service->isPaused());
        QCOMPARE(m_activity, QList<bool>{true});
        QCOMPARE(m_system.refreshes, 1);
        m_other->setFocus();
        QVERIFY(!m_recorder->isRecording());
        QCOMPARE(m_recorder->placeholderText(), QStringLiteral("Record Shortcut"));
        QVERIFY(!m_service->isPaused());
        QCOMPARE(m_activity, (QList<bool>{true, false}));
    }

    void storesWhatIsPressed()
    {
        m_recorder->setFocus();
        press(Qt::Key_Control, scanControl);
        QVERIFY(m_recorder->isRecording());
        press(Qt::Key_A, scanA, Qt::ControlModifier);
        QVERIFY(!m_recorder->isRecording());
        QVERIFY(!m_recorder->hasFocus());
        QCOMPARE(m_service->shortcut(m_name), std::optional(controlA));
        QCOMPARE(m_recorder->text(), QStringLiteral("⌃A"));
        QCOMPARE(m_changes, QList<std::optional<Shortcut>>{controlA});
        QCOMPARE(m_beeps, 0);
    }

    void tellsItsKeysInTheWordsOfMenus()
    {
        QCOMPARE(m_recorder->toolTip(), QString());
        m_service->setShortcut(m_name, Shortcut{0, 0x300});
        QCOMPARE(m_recorder->toolTip(), QStringLiteral("Meta+Shift+A"));
        QCOMPARE(m_recorder->accessibleDescription(), m_recorder->toolTip());
        m_recorder->setFocus();
        press(Qt::Key_A, scanA, Qt::ControlModifier);
        QCOMPARE(m_recorder->toolTip(), QStringLiteral("Ctrl+A"));
        QTest::mouseClick(m_recorder->cancelButton(), Qt::LeftButton);
        QCOMPARE(m_recorder->toolTip(), QString());
    }

    void showsPrintScreenAsF13()
    {
        m_recorder->setFocus();
        press(Qt::Key_Print, scanPrint);
        QCOMPARE(m_service->shortcut(m_name), std::optional(Shortcut{105, 0}));
        QCOMPARE(m_recorder->text(), QStringLiteral("F13"));
    }

    void beepsAtAKeyAlone()
    {
        m_recorder->setFocus();
        press(Qt::Key_A, scanA, Qt::ShiftModifier);
        QCOMPARE(m_beeps, 1);
        QVERIFY(m_recorder->isRecording());
        QVERIFY(!m_service->shortcut(m_name));
    }

    void keepsTheShortcutOnEscape()
    {
        m_service->setShortcut(m_name, controlA);
        m_recorder->setFocus();
        press(Qt::Key_Escape, scanEscape);
        QVERIFY(!m_recorder->isRecording());
        QVERIFY(!m_recorder->hasFocus());
        QVERIFY(m_window->isVisible());
        QCOMPARE(m_service->shortcut(m_name), std::optional(controlA));
    }

    void movesOnWithTab()
    {
        m_recorder->setFocus();
        press(Qt::Key_Tab, scanTab);
        QVERIFY(!m_recorder->isRecording());
        QVERIFY(m_other->hasFocus());
    }

    void clearsAndGoesOn()
    {
        m_service->setShortcut(m_name, controlA);
        m_recorder->setFocus();
        press(Qt::Key_Backspace, scanBackspace);
        QVERIFY(!m_service->shortcut(m_name));
        QCOMPARE(m_recorder->text(), QString());
        QVERIFY(!m_recorder->cancelButton()->isVisible());
        QVERIFY(m_recorder->isRecording());
    }

    void clearsByItsButton()
    {
        m_service->setShortcut(m_name, controlA);
        QTest::mouseClick(m_recorder->cancelButton(), Qt::LeftButton);
        QVERIFY(!m_service->shortcut(m_name));
        m_service->setShortcut(m_name, controlA);
        m_recorder->setFocus();
        QTest::mouseClick(m_recorder->cancelButton(), Qt::LeftButton);
        QVERIFY(!m_service->shortcut(m_name));
        QVERIFY(m_recorder->isRecording());
    }

    void endsWithAClickElsewhere()
    {
        QTest::mouseClick(m_recorder, Qt::LeftButton);
        QVERIFY(m_recorder->isRecording());
        clickAt(QPoint(-2, 5));
        QVERIFY(m_recorder->isRecording());
        clickAt(QPoint(-4, 5));
        QVERIFY(!m_recorder->isRecording());
        QVERIFY(!m_recorder->hasFocus());
    }

    void keepsKeysFromTheWindowsOwnShortcuts()
    {
        QAction quit;
        quit.setShortcut(QKeySequence(QStringLiteral("Ctrl+A")));
        int runs = 0;
        connect(&quit, &QAction::triggered, this, [&] { ++runs; });
        m_window->addAction(&quit);
        m_recorder->setFocus();
        QKeyEvent override(QEvent::ShortcutOverride, Qt::Key_A, Qt::ControlModifier, scanA, 0, 0);
        override.ignore();
        QCoreApplication::sendEvent(m_recorder, &override);
        QVERIFY(override.isAccepted());
        QTest::keyClick(m_recorder, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(runs, 0);
    }

    void endsWhenItGoesOutOfSight()
    {
        m_recorder->setFocus();
        m_recorder->hide();
        QVERIFY(!m_recorder->isRecording());
        QVERIFY(!m_service->isPaused());
        m_recorder->show();
        m_recorder->setFocus();
        QVERIFY(m_recorder->isRecording());
        m_window.reset();
        QVERIFY(!m_service->isPaused());
        QCOMPARE(m_activity, (QList<bool>{true, false, true, false}));
    }

    void doesNotRecordBecauseAWindowBecomesActive()
    {
        QFocusEvent event(QEvent::FocusIn, Qt::ActiveWindowFocusReason);
        QCoreApplication::sendEvent(m_recorder, &event);
        QVERIFY(!m_recorder->isRecording());
    }

    void tellsAssistivePrograms()
    {
        m_service->setShortcut(m_name, controlA);
        QAccessibleInterface *field = QAccessible::queryAccessibleInterface(m_recorder);
        QCOMPARE(field->role(), QAccessible::EditableText);
        QCOMPARE(field->text(QAccessible::Value), QStringLiteral("⌃A"));
        QCOMPARE(m_recorder->accessibleDescription(), QStringLiteral("Ctrl+A"));
        m_recorder->setFocus();
        QCOMPARE(m_recorder->accessibleDescription(), QStringLiteral("Press Shortcut. Ctrl+A"));
        m_other->setFocus();
        QCOMPARE(m_recorder->accessibleDescription(), QStringLiteral("Ctrl+A"));
        QCOMPARE(field->childCount(), 1);
        QAccessibleInterface *clear = field->child(0);
        QCOMPARE(clear->role(), QAccessible::Button);
        QCOMPARE(clear->text(QAccessible::Name), QStringLiteral("Clear Shortcut"));
        clear->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QVERIFY(!m_service->shortcut(m_name));
    }
};

QTEST_MAIN(TestRecorderCocoa)
#include "tst_RecorderCocoa.moc"
