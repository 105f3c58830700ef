// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Ordinary windows on sway: pictures of the active one, and our own where they are wanted.

#include "desktop/wayland/WaylandSession.h"
#include "support/Skip.h"

#include <QJsonArray>
#include <QRegularExpression>

using namespace tovek;

class TestWaylandWindows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { skipBecause(WaylandDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void photographsTheActiveWindowWithItsFrame_data()
    {
        QTest::addColumn<int>("monitor");
        QTest::newRow("at scale 1") << 0;
        QTest::newRow("at scale 1.5, on the second screen") << 1;
    }
    void photographsTheActiveWindowWithItsFrame()
    {
        QFETCH(int, monitor);
        const std::vector<WaylandMonitor> monitors{{QSize(1280, 800), 1}, {QSize(1200, 960), 1.5}};
        WaylandSession session({monitors});
        QVERIFY2(session.start(), qPrintable(session.error));
        WaylandDesktop &desktop = session.desktop;
        session.point(1 - monitor, WaylandSession::corner);
        const QImage empty = desktop.lookWhenStill(monitor);
        const QString output = WaylandDesktop::monitorName(monitor);
        QVERIFY(!desktop.tell({QStringLiteral("mouse_warping none")}).isNull());
        QVERIFY(!desktop.tell({QStringLiteral("focus output %1").arg(output)}).isNull());
        QVERIFY(!desktop.tell({QStringLiteral("default_floating_border normal 3")}).isNull());
        QVERIFY(desktop.run(QStringLiteral(TOVEK_DROP_WINDOW), {},
                            {{QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland")}}));
        QTRY_VERIFY(desktop.windowTitles().size() == 1);
        for (const char *command :
             {"floating enable", "border normal 3", "resize set 400 300", "move position 100 120"})
            QVERIFY(!desktop.tell({QLatin1String(command)}).isNull());
        const double scale = monitors[size_t(monitor)].scale;
        const QRect frame(QPoint(100, 120) * scale, QSize(400, 300) * scale);
        QTRY_VERIFY(differentPixels(desktop.look(monitor).copy(frame), empty.copy(frame)) > 0);
        const QImage screen = desktop.lookWhenStill(monitor);
        const QString file = desktop.home() + QStringLiteral("/window.png");
        desktop.output(qEnvironmentVariable("TOVEK_PROGRAM"),
                       {"shot", "--window", "active", "-o", file});
        const QImage shot(file);
        QCOMPARE(shot.size(), frame.size());
        QCOMPARE(differentPixels(shot, screen.copy(frame)), 0);
        // Not a pixel less on any side: beyond it lies the picture.
        const QRect around = frame.adjusted(-1, -1, 1, 1);
        const QImage ring = screen.copy(around);
        QCOMPARE(ring.copy(0, 0, ring.width(), 1), empty.copy(around).copy(0, 0, ring.width(), 1));
        QCOMPARE(ring.copy(0, 0, 1, ring.height()),
                 empty.copy(around).copy(0, 0, 1, ring.height()));
    }

    void bringsTheSettingsToTheWorkspaceThatIsLookedAt()
    {
        WaylandSession session;
        QVERIFY2(session.start(), qPrintable(session.error));
        WaylandDesktop &desktop = session.desktop;
        QVERIFY(session.act("preferences"));
        QTRY_COMPARE(desktop.windowTitles().size(), 1);
        QVERIFY(!desktop.tell({QStringLiteral("workspace other")}).isNull());
        const auto hasWindow = [&](const QString &workspace) {
            const QJsonDocument all =
                desktop.tell({QStringLiteral("-t"), QStringLiteral("get_workspaces")});
            for (const QJsonValue &entry : all.array()) {
                if (entry[QStringLiteral("name")].toString() == workspace)
                    return entry[QStringLiteral("focused")].toBool()
                        && !entry[QStringLiteral("focus")].toArray().isEmpty();
            }
            return false;
        };
        QVERIFY(!hasWindow(QStringLiteral("other")));
        QVERIFY(session.act("preferences"));
        QTRY_VERIFY(hasWindow(QStringLiteral("other")));
    }
};

QTEST_GUILESS_MAIN(TestWaylandWindows)
#include "tst_WaylandWindows.moc"
