// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/OnX11TestDesktop.h"
#include "platform/x11/overlay/X11PointerFollower.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTest>
#include <QWindow>

#include <xcb/xtest.h>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

X11TestDesktop *desktop = nullptr;

/// Counts what the toolkit hears of the mouse.
class Window : public QWindow
{
public:
    Window()
    {
        setFlags(Qt::BypassWindowManagerHint);
        setGeometry(100, 100, 600, 400);
        show();
    }
    int presses = 0, moves = 0, releases = 0;

private:
    void mousePressEvent(QMouseEvent *) override { ++presses; }
    void mouseMoveEvent(QMouseEvent *) override { ++moves; }
    void mouseReleaseEvent(QMouseEvent *) override { ++releases; }
};

void mouse(uint8_t type, uint8_t button, QPoint at = {})
{
    xcb_test_fake_input(desktop->client(), type, button, XCB_CURRENT_TIME, desktop->screen().root,
                        int16_t(at.x()), int16_t(at.y()), 0);
    desktop->sync();
}

void moveTo(QPoint at)
{
    mouse(XCB_MOTION_NOTIFY, 0, at);
}

} // namespace

class TestX11PointerFollower : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".*"));
        moveTo({50, 50});
        m_connection = X11Connection::create();
        QVERIFY(m_connection);
        m_window = std::make_unique<Window>();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_follower =
            std::make_unique<X11PointerFollower>(m_connection, X11Connection::open(), interval);
        m_follower->onMoved = [this](QPoint at) { m_places.push_back(at); };
        m_places.clear();
    }
    void cleanup()
    {
        mouse(XCB_BUTTON_RELEASE, 1);
        m_follower.reset();
        m_window.reset();
    }

    void tellsFewPlacesOfManyAndTheToolkitNone()
    {
        start();
        moveTo({200, 200});
        press();
        m_follower->pressed();
        QElapsedTimer time;
        time.start();
        for (int i = 1; i <= 200; ++i) {
            moveTo({200 + i, 200 + i / 2});
            QCoreApplication::processEvents();
            QTest::qSleep(1);
        }
        QTRY_COMPARE(m_places.isEmpty() ? QPoint() : m_places.last(), QPoint(300, 200));
        QVERIFY(m_places.size() >= 2);
        QVERIFY(m_places.size() <= time.elapsed() / interval.count() + 1);
        QCOMPARE(m_window->moves, 0);
        release();
        QVERIFY(m_follower->released());
    }

    void asksOnlyWhileTheButtonIsHeld()
    {
        start();
        moveTo({200, 200});
        m_follower->catchUp();
        QVERIFY(!m_follower->released());
        press();
        m_follower->pressed();
        m_follower->catchUp();
        QCOMPARE(m_places, QList<QPoint>{QPoint(100, 100)});
        m_follower->catchUp(); // nothing new
        QCOMPARE(m_places.size(), 1);
        release();
        QVERIFY(m_follower->released());
        moveTo({220, 220});
        m_follower->catchUp();
        QCOMPARE(m_places.size(), 1);
    }

    void givesTheToolkitItsMovesBack()
    {
        moveTo({250, 250});
        QTRY_VERIFY(m_window->moves > 0);
        start();
        m_window->moves = 0;
        moveTo({210, 210});
        m_connection->settle();
        QCoreApplication::processEvents();
        QCOMPARE(m_window->moves, 0);
        m_follower->stop();
        m_connection->settle();
        moveTo({220, 220});
        QTRY_COMPARE(m_window->moves, 1);
        press();
        moveTo({230, 230});
        QTRY_COMPARE(m_window->moves, 1);
    }

    void tellsWhereTheMouseWentBeforeTheToolkitListened()
    {
        start();
        moveTo({200, 200});
        press();
        m_follower->pressed();
        release();
        QVERIFY(m_follower->released());
        moveTo({260, 240});
        QCOMPARE(m_follower->giveBack(), std::optional(QPoint(160, 140)));
        QCOMPARE(m_follower->giveBack(), std::nullopt); // it hears by itself
        start();
        press();
        QCOMPARE(m_follower->giveBack(), std::nullopt); // the press says where
    }

private:
    static constexpr auto interval = 16ms;

    void start()
    {
        m_follower->start(xcb_window_t(m_window->winId()));
        QTest::qWait(0);
        m_connection->settle();
    }
    void press()
    {
        mouse(XCB_BUTTON_PRESS, 1);
        QTRY_COMPARE(m_window->presses - m_window->releases, 1);
        m_window->moves = 0; // the toolkit makes one up to get to the press
    }
    void release()
    {
        mouse(XCB_BUTTON_RELEASE, 1);
        QTRY_COMPARE(m_window->presses - m_window->releases, 0);
    }

    std::shared_ptr<X11Connection> m_connection;
    std::unique_ptr<Window> m_window;
    std::unique_ptr<X11PointerFollower> m_follower;
    QList<QPoint> m_places;
};

int main(int argc, char **argv)
{
    return runOnX11TestDesktop<TestX11PointerFollower>(argc, argv, desktop, {1024, 768});
}

#include "tst_X11PointerFollower.moc"
