// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Screens of a Wayland desktop that come, go and change while they are frozen.

#include "desktop/wayland/WaylandSession.h"
#include "support/Skip.h"

#include <QRegularExpression>

using namespace tovek;

class TestWaylandScreens : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(WaylandDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void survivesTheScreenThatGoes()
    {
        // The pointer is told its place on all of the desktop, whose size stays with the third.
        WaylandSession session(
            {{{QSize(1280, 800), 1}, {QSize(1600, 1200), 2}, {QSize(640, 480), 1}}});
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        const QString second = WaylandDesktop::monitorName(1);
        QVERIFY(!session.desktop.tell({QStringLiteral("output %1 disable").arg(second)}).isNull());
        session.select(0, {200, 200}, {400, 360});
        QVERIFY(session.tap("Return"));
        QCOMPARE(differentPixels(session.pasted(), session.expected(0, {200, 200, 200, 160})), 0);
        QVERIFY(session.openAgain());
        QVERIFY(session.tap("Escape"));
        QVERIFY(session.tovek->isRunning());
    }

    void survivesAScreenThatComes()
    {
        WaylandSession session;
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        QVERIFY(!session.desktop.tell({QStringLiteral("create_output")}).isNull());
        QTRY_VERIFY(!session.desktop.look(1).isNull());
        QCOMPARE(WaylandSession::differences(session.desktop.look(), session.before[0]), 0);
        QVERIFY(session.tap("Escape"));
        QTRY_COMPARE(WaylandSession::differences(session.desktop.look(), session.before[0]), 0);
        QVERIFY(session.tovek->isRunning());
    }

    void endsWithAScreenThatIsScaledAnew()
    {
        WaylandSession session({{{QSize(1200, 960), 1}}});
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        session.select(0, {200, 200}, {400, 360});
        QTRY_VERIFY(WaylandSession::differences(session.desktop.look(), session.before[0]) > 0);
        const QString first = WaylandDesktop::monitorName(0);
        QVERIFY(!session.desktop.tell({QStringLiteral("output %1 scale 2").arg(first)}).isNull());
        // The veil has gone with the picture of the other scale; the next capture is of the new
        // one.
        session.plan.monitors[0].scale = 2;
        session.hand = std::make_unique<WaylandHand>(session.desktop.socket(), QSize(600, 480));
        session.before.clear();
        QVERIFY(session.showPictures());
        QVERIFY(session.open());
        session.select(0, {200, 200}, {400, 360});
        QVERIFY(session.tap("Return"));
        QCOMPARE(differentPixels(session.pasted(), session.expected(0, {200, 200, 200, 160})), 0);
        QVERIFY(session.tovek->isRunning());
    }
};

QTEST_GUILESS_MAIN(TestWaylandScreens)
#include "tst_WaylandScreens.moc"
