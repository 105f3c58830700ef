// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

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

using namespace KeyboardShortcuts;
using tovek::KeyCombo;

namespace {

// Codes of the window system.
constexpr quint32 scanA = 38;
constexpr quint32 scanTab = 23;
constexpr quint32 scanEscape = 9;
constexpr quint32 scanBackspace = 22;
constexpr quint32 scanF5 = 71;
constexpr quint32 scanPrint = 107;
constexpr quint32 scanControl = 37;

const Shortcut controlA{0, 0x1000};

} // namespace

class TestRecorderCocoa : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
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
    void cleanup()
    {
        m_window.reset();
        m_token.reset();
        m_service.reset();
    }

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

private:
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

QTEST_MAIN(TestRecorderCocoa)
#include "tst_RecorderCocoa.moc"
