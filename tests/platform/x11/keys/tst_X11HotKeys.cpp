// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/KeyCodes.h"
#include "platform/x11/keys/X11HotKeysFixture.h"
#include "platform/x11/keys/X11KeyboardLayout.h"

#include <thread>
#include <xcb/xtest.h>

using namespace tovek;
using namespace std::chrono_literals;

/// What only a real X server can show.
class TestX11HotKeys : public QObject, protected X11HotKeysFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(XServer::missing()); }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        setUp();
    }
    void cleanup() { tearDown(); }

    void tellsAHeldKeyOnce()
    {
        const xcb_window_t window = m_keyboard->openWindow({100, 100}, true);
        m_keyboard->press(capture);
        QTest::qWait(1600); // repeats from 660 ms on
        QCOMPARE(m_log, QStringList{QStringLiteral("down 1")});
        m_keyboard->releaseAll();
        QVERIFY(waitForLog(2));
        QTest::qWait(100);
        QCOMPARE(m_log, QStringList({QStringLiteral("down 1"), QStringLiteral("up 1")}));
        typesAgain(window);
    }

    void keepsAHeldKeyFromTheFocusedWindow()
    {
        const xcb_window_t window = m_keyboard->openWindow({100, 100}, true);
        m_keyboard->press(capture);
        QTest::qWait(50);
        m_keyboard->takeKeyPresses(); // those of the modifiers
        m_keyboard->release(TestKeyboard::super);
        m_keyboard->release(TestKeyboard::control);
        QTest::qWait(1350);
        QCOMPARE(m_keyboard->takeKeyPresses(), 0);
        m_keyboard->release(keyC);
        QVERIFY(waitForLog(2));
        QCOMPARE(m_log, QStringList({QStringLiteral("down 1"), QStringLiteral("up 1")}));
        typesAgain(window);
    }

    void keepsAKeyThatRepeatsEarlyFromTheFocusedWindow()
    {
        const xcb_window_t window = m_keyboard->openWindow({100, 100}, true);
        run("xset", {"r", "rate", "150", "50"});
        m_keyboard->press(capture);
        QTest::qWait(20);
        m_keyboard->takeKeyPresses();
        QTest::qWait(800);
        QCOMPARE(m_keyboard->takeKeyPresses(), 0);
        m_keyboard->releaseAll();
        run("xset", {"r", "rate", "660", "25"});
        QVERIFY(waitForLog(2));
        QCOMPARE(m_log.size(), 2);
        typesAgain(window);
    }

    void knowsTheReleaseWhenTheModifiersGoFirst()
    {
        m_keyboard->press(capture);
        QVERIFY(waitForLog(1));
        m_keyboard->release(TestKeyboard::super);
        m_keyboard->release(TestKeyboard::control);
        QTest::qWait(50);
        QCOMPARE(m_log.size(), 1);
        m_keyboard->release(keyC);
        QVERIFY(waitForLog(2));
    }

    void passesOverLocks()
    {
        m_keyboard->tap(TestKeyboard::capsLock);
        m_keyboard->tap(TestKeyboard::numLock);
        m_keyboard->tap(capture);
        const bool isTold = waitForLog(2);
        m_keyboard->tap(TestKeyboard::capsLock);
        m_keyboard->tap(capture);
        const bool isToldAgain = waitForLog(4);
        m_keyboard->tap(TestKeyboard::numLock);
        QVERIFY(isTold);
        QVERIFY(isToldAgain);
    }

    void passesOverTheGroupOfTheLayout()
    {
        setLayout("us,ru");
        m_keyboard->setGroup(1);
        QTest::qWait(50);
        m_keyboard->tap(capture);
        const bool isTold = waitForLog(2);
        m_keyboard->setGroup(0);
        QVERIFY(isTold);
    }

    void grabsBothKeysOfACode()
    {
        QCOMPARE(m_hotKeys->grab(2, {105, 0}), 0);
        m_keyboard->tap(99); // Print Screen
        QVERIFY(waitForLog(2));
        m_keyboard->tap(183); // F13
        QVERIFY(waitForLog(4));
        QCOMPARE(m_log,
                 QStringList({QStringLiteral("down 2"), QStringLiteral("up 2"),
                              QStringLiteral("down 2"), QStringLiteral("up 2")}));
    }

    void refusesWhatIsHeldWithALockOnly()
    {
        m_keyboard->holdElsewhere(47, XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_2);
        QVERIFY(m_hotKeys->isTaken({9, 0x200}));
        QCOMPARE(m_hotKeys->grab(2, {9, 0x200}), 10);
        m_keyboard->press({9, 0x200}); // nothing of it is left behind
        m_keyboard->releaseAll();
        QTest::qWait(50);
        QCOMPARE(m_log, QStringList());
    }

    void losesNothingBeforeItDispatches()
    {
        open();
        QCOMPARE(m_hotKeys->grab(3, capture), 0);
        m_keyboard->tap(capture);
        QCOMPARE(m_hotKeys->grab(4, {9, 0x1100}), 0); // reads the events from the connection
        QVERIFY(!m_hotKeys->isTaken({11, 0x1100}));
        QTest::qWait(50);
        QCOMPARE(m_log, QStringList());
        m_hotKeys->startDispatching();
        QVERIFY(waitForLog(2));
        QCOMPARE(m_log, QStringList({QStringLiteral("down 3"), QStringLiteral("up 3")}));
    }

    void hearsAPressRightAfterTheGrab()
    {
        m_keyboard->press(TestKeyboard::control);
        m_keyboard->press(TestKeyboard::super);
        for (int round = 0; round < 200; ++round) {
            m_hotKeys->release(1);
            m_log.clear();
            std::thread presser([] { pressWhenGrabbed(); });
            const int status = m_hotKeys->grab(1, capture);
            presser.join();
            QCOMPARE(status, 0);
            QVERIFY2(waitForLog(1), qPrintable(QStringLiteral("round %1").arg(round)));
            m_keyboard->release(keyC);
            QVERIFY(waitForLog(2));
        }
        m_keyboard->releaseAll();
    }

    void tellsWhileAnotherProgramHasItsMenuOpen()
    {
        const xcb_window_t menu = m_keyboard->openWindow({200, 300}, false);
        m_keyboard->grabKeyboard(menu);
        m_keyboard->press(capture);
        QVERIFY(waitForLog(1));
        m_keyboard->releaseAll();
        QVERIFY(waitForLog(2));
        m_keyboard->tap({8, 0x1000});
        m_keyboard->tap(keyC);
        QTest::qWait(50);
        QCOMPARE(m_log.size(), 2);
        m_keyboard->ungrabKeyboard();
        m_keyboard->closeWindow(menu);
    }

    void tellsATapThatIsOverWhenItIsSeen()
    {
        const xcb_window_t menu = m_keyboard->openWindow({200, 300}, false);
        m_keyboard->grabKeyboard(menu);
        m_keyboard->press(TestKeyboard::control);
        m_keyboard->press(TestKeyboard::super);
        m_keyboard->tap(keyC); // this process has not looked yet
        QVERIFY(waitForLog(2));
        m_keyboard->releaseAll();
        m_keyboard->ungrabKeyboard();
        m_keyboard->closeWindow(menu);
    }

    void tellsNothingWhileTheScreenIsLocked()
    {
        const xcb_window_t locker = m_keyboard->openWindow({1280, 800}, false);
        m_keyboard->grabKeyboard(locker);
        m_keyboard->tap(capture);
        QTest::qWait(300);
        QCOMPARE(m_log, QStringList());
        m_keyboard->ungrabKeyboard();
        m_keyboard->closeWindow(locker);
        m_keyboard->tap(capture);
        QVERIFY(waitForLog(2));
    }

    void followsAnotherMapOfModifiers()
    {
        QCOMPARE(m_hotKeys->grab(2, {11, 0x800}), 0); // Alt and B
        run("setxkbmap", {"-layout", "us", "-option", "altwin:swap_alt_win"});
        QTest::qWait(200);
        m_keyboard->press(TestKeyboard::super); // is Alt now
        m_keyboard->tap(48);
        m_keyboard->releaseAll();
        const bool isTold = waitForLog(2);
        run("setxkbmap", {"-option", ""});
        QVERIFY(isTold);
        QVERIFY(m_log.contains(QStringLiteral("down 2")));
    }

    void tellsWhenWhatWasTakenMayBeFree_data()
    {
        QTest::addColumn<bool>("leaves");
        QTest::newRow("a program with a window leaves") << true;
        QTest::newRow("the modifiers have another map") << false;
    }
    void tellsWhenWhatWasTakenMayBeFree()
    {
        QFETCH(bool, leaves);
        int calls = 0;
        m_hotKeys->onMayBeFree = [&] { ++calls; };
        auto other = std::make_unique<TestKeyboard>(qEnvironmentVariable("DISPLAY"));
        other->holdElsewhere(30, XCB_MOD_MASK_CONTROL);
        other->openWindow({50, 50}, false);
        QVERIFY(m_hotKeys->grab(2, {0, 0x1000}) != 0);
        m_hotKeys->setWatchingForFreedKeys(true);
        QTest::qWait(500);
        QCOMPARE(calls, 0);
        if (leaves) {
            other.reset();
        } else {
            run("setxkbmap", {"-layout", "us", "-option", "altwin:swap_alt_win"});
            m_keyboard->tap(TestKeyboard::shift); // the server tells of the map with the next key
        }
        const bool isTold = waitUntil([&] { return calls > 0; });
        run("setxkbmap", {"-option", ""});
        QVERIFY(isTold);
        other.reset();
        QVERIFY(waitUntil([&] { return m_hotKeys->grab(2, {0, 0x1000}) == 0; }));
        m_hotKeys->setWatchingForFreedKeys(false);
        const int before = calls;
        TestKeyboard(qEnvironmentVariable("DISPLAY")).openWindow({50, 50}, false);
        QTest::qWait(600);
        QCOMPARE(calls, before);
    }

    void tellsThatTheServerWentAway()
    {
        XServer other;
        QVERIFY2(other.start(), qPrintable(other.error()));
        const QByteArray display = qgetenv("DISPLAY");
        qputenv("DISPLAY", other.displayName().toLatin1());
        auto hotKeys = X11HotKeys::create();
        qputenv("DISPLAY", display);
        QVERIFY(hotKeys);
        int losses = 0;
        hotKeys->onConnectionLost = [&] { ++losses; };
        QCOMPARE(hotKeys->grab(1, capture), 0);
        hotKeys->startDispatching();
        other.kill();
        QVERIFY(waitUntil([&] { return losses > 0; }, 5s));
        hotKeys->release(1);
        QTest::qWait(50);
        QCOMPARE(losses, 1);
    }

    void needsAServer()
    {
        const QByteArray display = qgetenv("DISPLAY");
        qputenv("DISPLAY", ":9999");
        QVERIFY(!X11HotKeys::create());
        QVERIFY(!X11KeyboardLayout::create());
        qputenv("DISPLAY", display);
    }

    // The layout

    void givesTheCharactersOfTheLayout_data()
    {
        QTest::addColumn<QString>("layout");
        QTest::addColumn<int>("group");
        QTest::addColumn<int>("keyCode");
        QTest::addColumn<QString>("character");
        const auto row = [](const char *layout, int group, int code, const char *character) {
            QTest::addRow("%s group %d key %d", layout, group, code)
                << QString::fromLatin1(layout) << group << code << QString::fromUtf8(character);
        };
        row("us", 0, 0, "a");
        row("us", 0, 18, "1");
        row("us", 0, 111, nullptr);
        row("us", 0, 36, nullptr);
        row("us", 0, 52, nullptr);
        row("fr", 0, 0, "q");
        row("fr", 0, 6, "w");
        row("fr", 0, 18, "&");
        row("de", 0, 6, "y");
        row("de", 0, 24, nullptr); // a dead key
        row("us,ru", 1, 0, "a");
        row("us,fr", 1, 0, "q");
        row("ru,fr", 0, 0, "q");
        row("ru", 0, 0, "a");
        row("gr", 0, 8, "c");
    }
    void givesTheCharactersOfTheLayout()
    {
        QFETCH(QString, layout);
        QFETCH(int, group);
        QFETCH(int, keyCode);
        QFETCH(QString, character);
        setLayout(qPrintable(layout));
        m_keyboard->setGroup(group);
        const auto keyboardLayout = X11KeyboardLayout::create();
        const auto typed = keyboardLayout->character(keyCode);
        m_keyboard->setGroup(0);
        QCOMPARE(typed.has_value(), !character.isNull());
        QCOMPARE(typed.value_or(QString()), character);
        if (keyCode == 0)
            QCOMPARE(keyboardLayout->characterOfScanCode(38), typed);
    }

    void noticesAnotherLayout()
    {
        setLayout("us,fr");
        const auto layout = X11KeyboardLayout::create();
        int changes = 0;
        layout->onChanged = [&] { ++changes; };
        layout->startDispatching();
        QCOMPARE(layout->character(0), std::optional(QStringLiteral("a")));
        m_keyboard->setGroup(1);
        QVERIFY(waitUntil([&] { return changes > 0; }, 2s));
        QCOMPARE(layout->character(0), std::optional(QStringLiteral("q")));
        setLayout("ru");
        QVERIFY(waitUntil(
            [&] { return layout->character(0) == std::optional(QStringLiteral("a")); }, 2s));
        m_keyboard->tap(TestKeyboard::shift); // the first key may bring the map of its keyboard
        QTest::qWait(100);
        const int before = changes;
        m_keyboard->tap(TestKeyboard::shift);
        m_keyboard->tap(keyC);
        QTest::qWait(50);
        QCOMPARE(changes, before);
    }

private:
    /// Presses the key of `capture`, whose modifiers are down, as soon as it is anybody's.
    static void pressWhenGrabbed()
    {
        const XConnection x(qEnvironmentVariable("DISPLAY"));
        constexpr auto keycode = xcb_keycode_t(keyC + windowSystemKeyOffset);
        constexpr uint16_t modifiers = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4;
        for (bool isTaken = false; !isTaken;) {
            xcb_grab_server(x);
            const XPtr<xcb_generic_error_t> refusal(
                xcb_request_check(x,
                                  xcb_grab_key_checked(x, false, x.root(), modifiers, keycode,
                                                       XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
            isTaken = refusal != nullptr;
            if (!isTaken)
                xcb_ungrab_key(x, keycode, x.root(), modifiers);
            else
                xcb_test_fake_input(x, XCB_KEY_PRESS, keycode, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0,
                                    0, 0);
            xcb_ungrab_server(x);
            x.sync();
        }
    }
    /// Nothing holds the keyboard any more.
    void typesAgain(xcb_window_t window)
    {
        QTest::qWait(50);
        m_keyboard->takeKeyPresses();
        m_keyboard->tap(keyC);
        QCOMPARE(m_keyboard->takeKeyPresses(), 1);
        m_keyboard->closeWindow(window);
    }
};

int main(int argc, char **argv)
{
    return runOnXServer<TestX11HotKeys>(argc, argv);
}

#include "tst_X11HotKeys.moc"
