// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/Contract.h"
#include "fakes/FakeHotKeys.h"
#ifdef TOVEK_WITH_X11
#include "platform/x11/TestKeyboard.h"
#include "platform/x11/keys/X11HotKeys.h"
#include "support/XServer.h"
#endif
#ifdef TOVEK_WITH_WAYLAND
#include "platform/wayland/keys/SwayHotKeys.h"
#include "platform/wayland/keys/WaylandKeyboardLayout.h"
#include "support/WaylandDesktop.h"
#include "support/WaylandHand.h"
#endif

#include <QGuiApplication>
#include <QTest>

using namespace tovek;

namespace {

constexpr KeyCombo copy{8, 0x1100};
constexpr KeyCombo paste{9, 0x1100};

/// A keyboard with its hot keys, real or not.
class Desk
{
public:
    virtual ~Desk() = default;
    virtual HotKeys &hotKeys() = 0;
    virtual void press(KeyCombo combo) = 0;
    virtual void releaseKeys() = 0;
    /// Holds what is down until it has repeated.
    virtual void repeat(KeyCombo combo) = 0;
    /// Control, Super and C.
    virtual void holdCopyElsewhere() = 0;
    /// Caps Lock is pressed and let go. False where there is none.
    virtual bool lock() { return false; }
    /// False where a key can be taken over from others.
    virtual bool refusesWhatOthersHold() const { return true; }
    /// Everything that the keys did has been told.
    virtual void settle() { }
};

class FakeDesk : public Desk
{
public:
    HotKeys &hotKeys() override { return m_hotKeys; }
    void press(KeyCombo combo) override { m_hotKeys.press(combo); }
    void releaseKeys() override { m_hotKeys.releaseKey(); }
    void repeat(KeyCombo combo) override { m_hotKeys.press(combo); }
    void holdCopyElsewhere() override { m_hotKeys.foreign = {copy}; }

private:
    FakeHotKeys m_hotKeys;
};

#ifdef TOVEK_WITH_X11
class X11Desk : public Desk
{
public:
    X11Desk() : m_hotKeys(X11HotKeys::create()), m_keyboard(qEnvironmentVariable("DISPLAY"))
    {
        m_hotKeys->startDispatching();
    }
    HotKeys &hotKeys() override { return *m_hotKeys; }
    void press(KeyCombo combo) override { m_keyboard.press(combo); }
    void releaseKeys() override { m_keyboard.releaseAll(); }
    void repeat(KeyCombo) override { QTest::qWait(1000); } // the server repeats after 660 ms
    void holdCopyElsewhere() override
    {
        m_keyboard.holdElsewhere(46, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4);
    }
    void settle() override { QTest::qWait(60); }

private:
    std::unique_ptr<X11HotKeys> m_hotKeys;
    TestKeyboard m_keyboard;
};
#endif

#ifdef TOVEK_WITH_WAYLAND
/// The keys of the test by the symbols that they type without modifiers.
QString chordOf(KeyCombo combo)
{
    QStringList names;
    if (combo.modifiers & ComboModifier::control)
        names << QStringLiteral("Control_L");
    if (combo.modifiers & ComboModifier::option)
        names << QStringLiteral("Alt_L");
    if (combo.modifiers & ComboModifier::shift)
        names << QStringLiteral("Shift_L");
    if (combo.modifiers & ComboModifier::command)
        names << QStringLiteral("Super_L");
    switch (combo.keyCode) {
    case 8:
        return (names << QStringLiteral("c")).join('+');
    case 9:
        return (names << QStringLiteral("v")).join('+');
    case 105:
        return (names << QStringLiteral("Print")).join('+');
    default:
        qFatal("The test has no name for the key %u", combo.keyCode);
    }
}

class SwayDesk : public Desk
{
public:
    explicit SwayDesk(WaylandDesktop &desktop)
        : m_desktop(desktop)
        , m_hand(desktop.socket(), {1280, 800})
        , m_layout(WaylandKeyboardLayout::create())
        , m_hotKeys(SwayHotKeys::create(desktop.environment().value(QStringLiteral("SWAYSOCK")),
                                        *m_layout))
    {
        m_hotKeys->startDispatching();
    }
    HotKeys &hotKeys() override { return *m_hotKeys; }
    void press(KeyCombo combo) override { m_held = chordOf(combo), (void)m_hand.hold(m_held); }
    void releaseKeys() override { (void)m_hand.letGo(m_held); }
    void repeat(KeyCombo) override { QTest::qWait(1000); } // sway repeats after 600 ms
    /// In the user's configuration; and bindings of its own do not keep it from being taken.
    void holdCopyElsewhere() override
    {
        const QString path = m_desktop.home() + QStringLiteral("/sway.conf");
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            m_desktop.writeFile(path, file.readAll() + "\nbindsym Ctrl+Mod4+c exec true\n");
        m_desktop.tell({QStringLiteral("reload")});
        QTest::qWait(200); // the bindings are made again
    }
    bool lock() override { return m_hand.tap(QStringLiteral("Caps_Lock")); }
    bool refusesWhatOthersHold() const override { return false; }
    void settle() override { QTest::qWait(60); }

private:
    WaylandDesktop &m_desktop;
    WaylandHand m_hand;
    std::unique_ptr<WaylandKeyboardLayout> m_layout;
    std::unique_ptr<SwayHotKeys> m_hotKeys;
    QString m_held;
};
#endif

} // namespace

/// What every implementation of the hot keys keeps to.
class TestHotKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data()
    {
        std::vector<RealImplementation> real;
#ifdef TOVEK_WITH_X11
        real.push_back({"x11", XServer::missing()});
#endif
#ifdef TOVEK_WITH_WAYLAND
        real.push_back({"sway", WaylandDesktop::missing()});
#endif
        addImplementations(real);
    }

    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_desk = makeDesk();
        QVERIFY(m_desk);
        m_log.clear();
        keys().onPressed = [this](quint32 id) { m_log << QStringLiteral("down %1").arg(id); };
        keys().onReleased = [this](quint32 id) { m_log << QStringLiteral("up %1").arg(id); };
    }
    void cleanup()
    {
        m_desk.reset();
    }

    void tellsOfThePressAtOnceAndOfTheRelease()
    {
        QCOMPARE(keys().grab(7, copy), 0);
        QVERIFY(keys().reportsRelease());
        press(copy);
        QCOMPARE(m_log, QStringList{QStringLiteral("down 7")});
        releaseKeys();
        QCOMPARE(m_log, QStringList({QStringLiteral("down 7"), QStringLiteral("up 7")}));
    }

    void tellsOfEveryTap()
    {
        QCOMPARE(keys().grab(1, copy), 0);
        for (int count = 0; count < 3; ++count)
            tap(copy);
        QCOMPARE(m_log.size(), 6);
    }

    void tellsNothingOfOtherCombinations_data()
    {
        QTest::addColumn<quint32>("keyCode");
        QTest::addColumn<quint32>("modifiers");
        QTest::newRow("other key") << 9u << 0x1100u;
        QTest::newRow("no modifiers") << 8u << 0u;
        QTest::newRow("one modifier missing") << 8u << 0x100u;
        QTest::newRow("one modifier more") << 8u << 0x1300u;
        QTest::newRow("another modifier") << 8u << 0x1800u;
    }
    void tellsNothingOfOtherCombinations()
    {
        QFETCH(quint32, keyCode);
        QFETCH(quint32, modifiers);
        QCOMPARE(keys().grab(1, copy), 0);
        tap({keyCode, modifiers});
        QCOMPARE(m_log, QStringList());
    }

    void tellsCombinationsApart()
    {
        QCOMPARE(keys().grab(1, copy), 0);
        QCOMPARE(keys().grab(2, paste), 0);
        QCOMPARE(keys().grab(3, {8, 0x1300}), 0);
        QCOMPARE(keys().grab(4, {105, 0}), 0);
        tap({8, 0x1300});
        tap(paste);
        tap({105, 0});
        QCOMPARE(m_log,
                 QStringList({QStringLiteral("down 3"), QStringLiteral("up 3"),
                              QStringLiteral("down 2"), QStringLiteral("up 2"),
                              QStringLiteral("down 4"), QStringLiteral("up 4")}));
    }

    void refusesWhatAnotherProgramHolds()
    {
        if (!m_desk->refusesWhatOthersHold())
            QSKIP("Keys can be taken over here");
        m_desk->holdCopyElsewhere();
        QCOMPARE(keys().grab(1, copy), 10);
        QCOMPARE(keys().grab(2, paste), 0);
        tap(copy);
        tap(paste);
        QCOMPARE(m_log, QStringList({QStringLiteral("down 2"), QStringLiteral("up 2")}));
    }

    void refusesWhatItHoldsItself()
    {
        QCOMPARE(keys().grab(1, copy), 0);
        QCOMPARE(keys().grab(2, copy), 10);
        tap(copy);
        QCOMPARE(m_log, QStringList({QStringLiteral("down 1"), QStringLiteral("up 1")}));
    }

    void refusesAKeyThatDoesNotExist()
    {
        QCOMPARE(keys().grab(1, {52, 0x1100}), 1);
    }

    void knowsWhatIsTaken()
    {
        QVERIFY(!keys().isTaken(copy));
        QCOMPARE(keys().grab(1, paste), 0);
        QVERIFY(!keys().isTaken(paste));
        m_desk->holdCopyElsewhere();
        QVERIFY(keys().isTaken(copy));
        tap(paste); // asking does no harm
        QCOMPARE(m_log.size(), 2);
    }

    void tellsOfATapWhateverTheLocksAre()
    {
        QCOMPARE(keys().grab(1, copy), 0);
        if (!m_desk->lock())
            QSKIP("No lock keys here");
        tap(copy);
        QVERIFY(m_desk->lock());
        QCOMPARE(m_log, QStringList({QStringLiteral("down 1"), QStringLiteral("up 1")}));
    }

    void tellsNothingAfterTheEndOfAGrab()
    {
        QCOMPARE(keys().grab(1, copy), 0);
        keys().release(2);
        press(copy);
        keys().release(1);
        releaseKeys();
        tap(copy);
        QCOMPARE(m_log, QStringList{QStringLiteral("down 1")});
        QCOMPARE(keys().grab(1, copy), 0);
        tap(copy);
        QCOMPARE(m_log.size(), 3);
    }

    void tellsNothingOfAKeyThatWasDownBeforeItsGrab()
    {
        press(copy);
        QCOMPARE(keys().grab(1, copy), 0);
        m_desk->repeat(copy);
        releaseKeys();
        QCOMPARE(m_log, QStringList());
        tap(copy);
        QCOMPARE(m_log, QStringList({QStringLiteral("down 1"), QStringLiteral("up 1")}));
    }

    void tellsNoReleaseToTheNextGrabOfAKey()
    {
        QCOMPARE(keys().grab(1, copy), 0);
        press(copy);
        keys().release(1);
        QCOMPARE(keys().grab(2, copy), 0);
        m_desk->repeat(copy);
        releaseKeys();
        QCOMPARE(m_log, QStringList{QStringLiteral("down 1")});
        tap(copy);
        QCOMPARE(m_log.mid(1), QStringList({QStringLiteral("down 2"), QStringLiteral("up 2")}));
    }

    void letsACallbackChangeTheGrabs()
    {
        QCOMPARE(keys().grab(1, copy), 0);
        keys().onPressed = [this](quint32 id) {
            m_log << QStringLiteral("down %1").arg(id);
            keys().release(id);
            m_status = keys().grab(id + 1, paste);
        };
        tap(copy);
        QCOMPARE(m_status, 0);
        tap(copy);
        QCOMPARE(m_log, QStringList{QStringLiteral("down 1")});
    }

private:
    std::unique_ptr<Desk> makeDesk()
    {
        QFETCH_GLOBAL(QString, implementation);
#ifdef TOVEK_WITH_X11
        if (implementation == QLatin1String("x11"))
            return std::make_unique<X11Desk>();
#endif
#ifdef TOVEK_WITH_WAYLAND
        if (implementation == QLatin1String("sway")) {
            m_desktop = std::make_unique<WaylandDesktop>();
            if (!m_desktop->start())
                return nullptr;
            qputenv("WAYLAND_DISPLAY", m_desktop->socket().toLocal8Bit());
            return std::make_unique<SwayDesk>(*m_desktop);
        }
#endif
        return std::make_unique<FakeDesk>();
    }
    HotKeys &keys()
    {
        return m_desk->hotKeys();
    }
    void press(KeyCombo combo)
    {
        m_desk->press(combo);
        m_desk->settle();
    }
    void releaseKeys()
    {
        m_desk->releaseKeys();
        m_desk->settle();
    }
    void tap(KeyCombo combo)
    {
        press(combo);
        releaseKeys();
    }

#ifdef TOVEK_WITH_WAYLAND
    std::unique_ptr<WaylandDesktop> m_desktop;
#endif
    std::unique_ptr<Desk> m_desk;
    QStringList m_log;
    int m_status = -1;
};

int main(int argc, char **argv)
{
#ifdef TOVEK_WITH_X11
    XServer server;
    if (XServer::missing().isEmpty()) {
        if (!server.start())
            qFatal("%s", qPrintable(server.error()));
        qputenv("DISPLAY", server.displayName().toLatin1());
    }
#endif
    QGuiApplication application(argc, argv);
    TestHotKeys test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_HotKeys.moc"
