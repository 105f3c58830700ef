// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/RecorderRules.h"

#include <QTest>

using namespace KeyboardShortcuts;
using tovek::KeyFlag;
using tovek::KeyFlags;
using Action = RecorderDecision::Action;
using Type = InputEvent::Type;

namespace {

constexpr int letterA = 0;
constexpr int f5 = 96;
constexpr int printScreen = 105;
constexpr int f20 = 90;
const QRectF bounds(0, 0, 130, 24);

RecorderEvent keyDown(int keyCode, KeyFlags flags)
{
    return {{Type::keyDown, {keyCode, flags, {}}}, {}};
}

} // namespace

class TestRecorderRules : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void countsClicksUpToThreePointsBesideIt_data()
    {
        QTest::addColumn<QPointF>("at");
        QTest::addColumn<Action>("action");
        QTest::newRow("in the middle") << QPointF(60, 12) << Action::swallow;
        QTest::newRow("2 points left") << QPointF(-2, 12) << Action::swallow;
        QTest::newRow("3 points left") << QPointF(-3, 12) << Action::swallow;
        QTest::newRow("4 points left") << QPointF(-4, 12) << Action::releaseAndPassOn;
        QTest::newRow("2 points above") << QPointF(60, -2) << Action::swallow;
        QTest::newRow("4 points above") << QPointF(60, -4) << Action::releaseAndPassOn;
        QTest::newRow("2 points right") << QPointF(132, 12) << Action::swallow;
        QTest::newRow("at the right edge") << QPointF(133, 12) << Action::releaseAndPassOn;
        QTest::newRow("2 points below") << QPointF(60, 26) << Action::swallow;
        QTest::newRow("4 points below") << QPointF(60, 28) << Action::releaseAndPassOn;
    }
    void countsClicksUpToThreePointsBesideIt()
    {
        QFETCH(QPointF, at);
        QFETCH(Action, action);
        for (const Type type : {Type::leftMouseUp, Type::rightMouseUp})
            QCOMPARE(decide({{type, {}}, at}, bounds, m_environment).action, action);
    }

    void takesKeysThatGoDownAlone_data()
    {
        QTest::addColumn<Type>("type");
        QTest::addColumn<Action>("action");
        QTest::newRow("key up") << Type::keyUp << Action::swallow;
        QTest::newRow("modifier") << Type::flagsChanged << Action::swallow;
        QTest::newRow("anything else") << Type::other << Action::passOn;
    }
    void takesKeysThatGoDownAlone()
    {
        QFETCH(Type, type);
        QFETCH(Action, action);
        const RecorderEvent event{{type, {f5, KeyFlag::control, {}}}, {}};
        QCOMPARE(decide(event, bounds, m_environment).action, action);
    }

    void judgesKeysByTheirModifiers_data()
    {
        QTest::addColumn<int>("keyCode");
        QTest::addColumn<KeyFlags>("flags");
        QTest::addColumn<Action>("action");
        const KeyFlags none;
        const KeyFlags locks = KeyFlag::capsLock | KeyFlag::numericPad;
        const KeyFlags shift = KeyFlag::shift;
        const KeyFlags control = KeyFlag::control;
        QTest::newRow("Tab") << 48 << none << Action::releaseAndPassOn;
        QTest::newRow("Tab with locks") << 48 << locks << Action::releaseAndPassOn;
        QTest::newRow("Shift-Tab") << 48 << shift << Action::beep;
        QTest::newRow("Control-Tab") << 48 << control << Action::store;
        QTest::newRow("Escape") << 53 << none << Action::release;
        QTest::newRow("Escape with locks") << 53 << locks << Action::release;
        QTest::newRow("Function-Escape") << 53 << KeyFlags(KeyFlag::function) << Action::beep;
        QTest::newRow("Control-Escape") << 53 << control << Action::store;
        QTest::newRow("Delete") << 51 << none << Action::clear;
        QTest::newRow("Forward Delete") << 117 << none << Action::clear;
        QTest::newRow("Control-Delete") << 51 << control << Action::store;
        QTest::newRow("Shift-Delete") << 51 << shift << Action::beep;
        QTest::newRow("a letter") << letterA << none << Action::beep;
        QTest::newRow("Shift-letter") << letterA << shift << Action::beep;
        QTest::newRow("Shift-Function-letter")
            << letterA << (shift | KeyFlag::function) << Action::beep;
        QTest::newRow("Control-letter") << letterA << control << Action::store;
        QTest::newRow("Option-letter") << letterA << KeyFlags(KeyFlag::option) << Action::store;
        QTest::newRow("Command-letter") << letterA << KeyFlags(KeyFlag::command) << Action::store;
        QTest::newRow("F5") << f5 << none << Action::store;
        QTest::newRow("Shift-F5") << f5 << shift << Action::store;
        QTest::newRow("Print Screen") << printScreen << none << Action::store;
        QTest::newRow("F20") << f20 << none << Action::store;
        QTest::newRow("Help is none") << 114 << none << Action::beep;
        QTest::newRow("a key without a code") << tovek::KeyCode::none << control << Action::beep;
    }
    void judgesKeysByTheirModifiers()
    {
        QFETCH(int, keyCode);
        QFETCH(KeyFlags, flags);
        QFETCH(Action, action);
        QCOMPARE(decide(keyDown(keyCode, flags), bounds, m_environment).action, action);
    }

    void storesTheKnownModifiersOnly()
    {
        const KeyFlags flags = KeyFlag::control | KeyFlag::capsLock | KeyFlag::function;
        const auto decision = decide(keyDown(letterA, flags), bounds, m_environment);
        QCOMPARE(decision, (RecorderDecision{Action::store, Shortcut{letterA, 0x1000}, {}}));
    }

    void refusesWhatAMenuItemAnswersTo()
    {
        m_environment.menuItemTitle = [](const Shortcut &shortcut) {
            return shortcut.carbonKeyCode == letterA ? std::optional(QStringLiteral("Quit"))
                                                     : std::nullopt;
        };
        // Comes before all other conflicts.
        m_environment.isSystemShortcut = [](const Shortcut &) { return true; };
        makeSystem(15, 0, true);
        const Shortcut optionA{letterA, 0x800};
        QCOMPARE(decide(optionA, m_environment),
                 (RecorderDecision{Action::refuseForMenuItem, optionA, QStringLiteral("Quit")}));
        QCOMPARE(decide(Shortcut{1, 0x1000}, m_environment).action, Action::askAboutSystem);
    }

    void refusesOptionAloneInSomeSandboxes_data()
    {
        QTest::addColumn<int>("major");
        QTest::addColumn<int>("minor");
        QTest::addColumn<bool>("isSandboxed");
        QTest::addColumn<qint64>("modifiers");
        QTest::addColumn<Action>("action");
        const auto refused = Action::refuseAsDisallowed;
        QTest::newRow("14.9") << 14 << 9 << true << qint64(0x800) << Action::store;
        QTest::newRow("15.0") << 15 << 0 << true << qint64(0x800) << refused;
        QTest::newRow("15.1") << 15 << 1 << true << qint64(0x800) << refused;
        QTest::newRow("15.2") << 15 << 2 << true << qint64(0x800) << Action::store;
        QTest::newRow("16.0") << 16 << 0 << true << qint64(0x800) << Action::store;
        QTest::newRow("no sandbox") << 15 << 0 << false << qint64(0x800) << Action::store;
        QTest::newRow("with Shift") << 15 << 0 << true << qint64(0xA00) << refused;
        QTest::newRow("with Control") << 15 << 0 << true << qint64(0x1800) << Action::store;
        QTest::newRow("with Command") << 15 << 0 << true << qint64(0x900) << Action::store;
        QTest::newRow("with Function") << 15 << 0 << true << qint64(0x20800) << Action::store;
        QTest::newRow("Shift alone") << 15 << 0 << true << qint64(0x200) << Action::store;
    }
    void refusesOptionAloneInSomeSandboxes()
    {
        QFETCH(int, major);
        QFETCH(int, minor);
        QFETCH(bool, isSandboxed);
        QFETCH(qint64, modifiers);
        QFETCH(Action, action);
        makeSystem(major, minor, isSandboxed);
        const Shortcut shortcut{letterA, modifiers};
        QCOMPARE(decide(shortcut, m_environment), (RecorderDecision{action, shortcut, QString()}));
    }

    void asksAboutSystemShortcutsButForF12_data()
    {
        QTest::addColumn<qint64>("keyCode");
        QTest::addColumn<qint64>("modifiers");
        QTest::addColumn<Action>("action");
        QTest::newRow("Control-A") << qint64(0) << qint64(0x1000) << Action::askAboutSystem;
        QTest::newRow("F11") << qint64(103) << qint64(0) << Action::askAboutSystem;
        QTest::newRow("F12") << qint64(111) << qint64(0) << Action::store;
        QTest::newRow("Shift-F12") << qint64(111) << qint64(0x200) << Action::askAboutSystem;
    }
    void asksAboutSystemShortcutsButForF12()
    {
        QFETCH(qint64, keyCode);
        QFETCH(qint64, modifiers);
        QFETCH(Action, action);
        m_environment.isSystemShortcut = [](const Shortcut &) { return true; };
        QCOMPARE(decide(Shortcut{keyCode, modifiers}, m_environment).action, action);
    }

    void cleanup() { m_environment = {}; }

private:
    void makeSystem(int major, int minor, bool isSandboxed)
    {
        m_environment.systemMajor = major;
        m_environment.systemMinor = minor;
        m_environment.isSandboxed = isSandboxed;
    }

    RecorderEnvironment m_environment;
};

QTEST_APPLESS_MAIN(TestRecorderRules)
#include "tst_RecorderRules.moc"
