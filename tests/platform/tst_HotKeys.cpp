// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/Contract.h"
#include "fakes/FakeHotKeys.h"
#include "platform/x11/TestKeyboard.h"
#include "platform/x11/keys/X11HotKeys.h"
#include "support/XServer.h"

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

} // namespace

/// What every implementation of the hot keys keeps to.
class TestHotKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() { addImplementations(XServer::missing()); }

    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_desk = makeDesk<Desk, FakeDesk, X11Desk>();
        m_log.clear();
        keys().onPressed = [this](quint32 id) { m_log << QStringLiteral("down %1").arg(id); };
        keys().onReleased = [this](quint32 id) { m_log << QStringLiteral("up %1").arg(id); };
    }
    void cleanup() { m_desk.reset(); }

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

    void refusesAKeyThatDoesNotExist() { QCOMPARE(keys().grab(1, {52, 0x1100}), 1); }

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
    HotKeys &keys() { return m_desk->hotKeys(); }
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

    std::unique_ptr<Desk> m_desk;
    QStringList m_log;
    int m_status = -1;
};

int main(int argc, char **argv)
{
    XServer server;
    if (XServer::missing().isEmpty()) {
        if (!server.start())
            qFatal("%s", qPrintable(server.error()));
        qputenv("DISPLAY", server.displayName().toLatin1());
    }
    QGuiApplication application(argc, argv);
    TestHotKeys test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_HotKeys.moc"
