// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/keys/X11HotKeysFixture.h"
#include "platform/x11/keys/X11RawKeyFilter.h"

#include <QMenu>

using namespace tovek;
using namespace std::chrono_literals;

/// The keys of our own menus, which come as raw ones.
class TestX11RawKeys : public QObject, protected X11HotKeysFixture
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

    void offersTheKeysOfOurOwnMenus()
    {
        m_hotKeys->release(1);
        m_hotKeys->setWatchingRawKeys(true);
        QList<KeyCombo> offered;
        m_hotKeys->onRawKey = [&](KeyCombo combo, bool isDown) {
            if (isDown)
                offered << combo;
            m_log << (isDown ? QStringLiteral("raw down") : QStringLiteral("raw up"));
            return combo == KeyCombo{36, 0x200}; // Shift and Return
        };
        QMenu menu;
        int chosen = 0;
        QObject::connect(menu.addAction(QStringLiteral("One")), &QAction::triggered,
                         [&] { ++chosen; });
        menu.popup({100, 100});
        menu.setActiveAction(menu.actions().constFirst());
        QVERIFY(QTest::qWaitForWindowExposed(&menu));

        m_keyboard->press({36, 0x200});
        QTest::qWait(1000); // repeats, which are no presses
        m_keyboard->releaseAll();
        QTest::qWait(100);
        QCOMPARE(offered, QList<KeyCombo>({{56, 0}, {36, 0x200}}));
        QCOMPARE(m_log,
                 QStringList({QStringLiteral("raw down"), QStringLiteral("raw down"),
                              QStringLiteral("raw up"), QStringLiteral("raw up")}));
        QCOMPARE(chosen, 0);
        QVERIFY(menu.isVisible());

        m_keyboard->tap(28); // Return alone is the menu's
        QVERIFY(waitUntil([&] { return chosen == 1; }, 2s));
        m_hotKeys->setWatchingRawKeys(false);
    }

    void takesARepeatThatIsReadLateForNoPress()
    {
        // Behind a busy moment, repeats are read when the key has long been let go.
        QStringList told;
        const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(
            xcb_connect(nullptr, nullptr), &xcb_disconnect);
        X11RawKeyFilter filter(connection.get(), [&](KeyCombo, bool isDown) {
            told << (isDown ? QStringLiteral("down") : QStringLiteral("up"));
            return true;
        });
        filter.setWatching(true, {});
        const auto read = [&](quint8 type, xcb_timestamp_t time) {
            xcb_key_press_event_t event{};
            event.response_type = type;
            event.detail = keyC + 8;
            event.time = time;
            return filter.nativeEventFilter("xcb_generic_event_t", &event, nullptr);
        };
        QVERIFY(read(XCB_KEY_PRESS, 1000));
        for (const xcb_timestamp_t repeat : {1660, 1700}) {
            QVERIFY(read(XCB_KEY_RELEASE, repeat));
            QVERIFY(read(XCB_KEY_PRESS, repeat));
        }
        QVERIFY(read(XCB_KEY_RELEASE, 1710));
        QCOMPARE(told, QStringList({"down", "up"}));
        QVERIFY(read(XCB_KEY_PRESS, 1711));
        QCOMPARE(told, QStringList({"down", "up", "down"}));
    }

    void letsTheHandlerCloseTheMenu()
    {
        m_hotKeys->release(1);
        m_hotKeys->setWatchingRawKeys(true);
        m_hotKeys->onRawKey = [&](KeyCombo, bool) {
            m_log << QStringLiteral("raw");
            m_hotKeys->setWatchingRawKeys(false);
            return true;
        };
        QMenu menu;
        menu.addAction(QStringLiteral("One"));
        menu.popup({100, 100});
        QVERIFY(QTest::qWaitForWindowExposed(&menu));
        m_keyboard->tap(keyC);
        QVERIFY(waitForLog(1));
        QTest::qWait(50);
        QCOMPARE(m_log.size(), 1);
    }
};

int main(int argc, char **argv)
{
    return runOnXServer<TestX11RawKeys>(argc, argv);
}

#include "tst_X11RawKeys.moc"
