// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The moves of a drag: how many are told, and how often the connection is read for them.

#include "platform/wayland/overlay/DragFollower.h"
#include "support/compositor/TestCompositor.h"

#include <QElapsedTimer>
#include <QMouseEvent>
#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

constexpr auto interval = 400ms;
constexpr qint64 soonMs = 200; // the compositor answers within microseconds

struct Drag
{
    explicit Drag(const std::shared_ptr<WaylandConnection> &connection)
        : follower(connection, interval)
    {
        follower.canShow = [this] { return canShow; };
        follower.onMoved = [this](QPointF at) { told.push_back(at); };
        follower.setOn(true);
    }
    bool send(QEvent::Type type, QPointF at, Qt::MouseButton button = Qt::LeftButton)
    {
        const bool isMove = type == QEvent::MouseMove;
        return follower.take(QMouseEvent(type, at, at, at, isMove ? Qt::NoButton : button,
                                         type == QEvent::MouseButtonRelease ? Qt::NoButton : button,
                                         Qt::NoModifier));
    }
    bool press() { return send(QEvent::MouseButtonPress, {}); }
    bool move(QPointF to) { return send(QEvent::MouseMove, to); }

    bool canShow = true;
    std::vector<QPointF> told;
    DragFollower follower;
};

using Places = std::vector<QPointF>;

} // namespace

class TestDragFollower : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_compositor.start());
        const UseCompositor use(m_compositor);
        m_connection = WaylandConnection::open();
        QVERIFY(m_connection);
    }
    void cleanupTestCase() { m_connection.reset(); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void tellsTheLastOfTheMovesThatCameTogether()
    {
        Drag drag(m_connection);
        QVERIFY(!drag.press());
        QVERIFY(drag.move({1, 1}));
        QVERIFY(drag.move({2.25, 7}));
        QCOMPARE(drag.told, Places());
        QCoreApplication::processEvents();
        QCOMPARE(drag.told, Places({{2.25, 7}}));
        QCoreApplication::processEvents();
        QCOMPARE(drag.told.size(), size_t(1));
    }

    void waitsUntilAFrameCanBeShown()
    {
        Drag drag(m_connection);
        drag.press();
        drag.canShow = false;
        QVERIFY(drag.move({1, 1}));
        QCoreApplication::processEvents();
        QCOMPARE(drag.told, Places());
        drag.canShow = true;
        drag.follower.catchUpSoon();
        QVERIFY(drag.move({2, 2})); // read together with the news that it can
        QCoreApplication::processEvents();
        QCOMPARE(drag.told, Places({{2, 2}}));
    }

    void tellsWhereTheButtonWasReleasedBeforeTheRelease()
    {
        Drag drag(m_connection);
        drag.press();
        drag.canShow = false;
        QVERIFY(drag.move({1, 1}));
        QVERIFY(!drag.send(QEvent::MouseButtonRelease, {9, 3}));
        QCOMPARE(drag.told, Places({{9, 3}}));
        QVERIFY(!drag.move({20, 20})); // nothing is dragged any more
        QCoreApplication::processEvents();
        QCOMPARE(drag.told.size(), size_t(1));
    }

    void tellsOfMovesBeforeAKey()
    {
        Drag drag(m_connection);
        drag.press();
        drag.canShow = false;
        QVERIFY(drag.move({4, 5}));
        QVERIFY(!drag.follower.take(QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier)));
        QCOMPARE(drag.told, Places({{4, 5}}));
    }

    void leavesOtherMovesAlone()
    {
        Drag drag(m_connection);
        QVERIFY(!drag.move({1, 1}));
        QVERIFY(!drag.send(QEvent::MouseButtonPress, {}, Qt::RightButton));
        QVERIFY(!drag.move({1, 1}));
        drag.follower.setOn(false);
        QVERIFY(!drag.press());
        QVERIFY(!drag.move({2, 2}));
        QVERIFY(!drag.send(QEvent::MouseButtonRelease, {2, 2}));
        QCoreApplication::processEvents();
        QCOMPARE(drag.told, Places());
    }

    void endsWithAMoveWithoutTheButton()
    {
        Drag drag(m_connection);
        drag.press();
        QVERIFY(!drag.send(QEvent::MouseMove, {1, 1}, Qt::NoButton));
        QVERIFY(!drag.move({2, 2}));
        QCoreApplication::processEvents();
        QCOMPARE(drag.told, Places());
    }

    void forgetsWhatWasNotToldWhenItEnds()
    {
        Drag drag(m_connection);
        drag.press();
        QVERIFY(drag.move({1, 1}));
        drag.follower.setOn(false);
        QCoreApplication::processEvents();
        QCOMPARE(drag.told, Places());
    }

    void readsAtOnceAfterARestAndThenOnceInAnInterval()
    {
        Drag drag(m_connection);
        drag.press();
        // As soon as the thread that reads has begun.
        QVERIFY(happensOnce([this] {
            QTest::qWait(soonMs / 4);
            return roundtripMs() >= soonMs;
        }));
        QVERIFY(happensOnce([this] {
            QTest::qWait(int(interval.count()));
            return roundtripMs() < soonMs;
        }));
        drag.send(QEvent::MouseButtonRelease, {});
        QVERIFY(happensOnce([this] { return roundtripMs() + roundtripMs() < soonMs; }));
    }

    void endsInTheMiddleOfAnInterval()
    {
        Drag drag(m_connection);
        drag.press();
        QVERIFY(roundtripMs() < soonMs);
        m_connection->flush();
        QElapsedTimer timer;
        timer.start();
        drag.follower.setOn(false);
        QVERIFY(timer.elapsed() < soonMs);
    }

    void survivesALostConnection()
    {
        TestCompositor compositor({});
        QVERIFY(compositor.start());
        const UseCompositor use(compositor);
        const auto connection = WaylandConnection::open();
        QVERIFY(connection);
        Drag drag(connection);
        drag.press();
        compositor.hangUp();
        QVERIFY(!connection->roundtrip());
        QElapsedTimer timer;
        timer.start();
        drag.follower.setOn(false);
        QVERIFY(timer.elapsed() < soonMs);
    }

private:
    /// A busy machine may be late, but not ten times on end.
    static bool happensOnce(const std::function<bool()> &attempt)
    {
        for (int i = 0; i < 10; ++i) {
            if (attempt())
                return true;
        }
        return false;
    }
    qint64 roundtripMs() const
    {
        QElapsedTimer timer;
        timer.start();
        return m_connection->roundtrip() ? timer.elapsed() : -1;
    }

    TestCompositor m_compositor{CompositorPlan{}};
    std::shared_ptr<WaylandConnection> m_connection;
};

QTEST_GUILESS_MAIN(TestDragFollower)
#include "tst_DragFollower.moc"
