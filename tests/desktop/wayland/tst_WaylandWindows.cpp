// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Ordinary windows: pictures of the active one, and our own where they are wanted.

#include "desktop/wayland/ExactPixels.h"
#include "support/Skip.h"

#include <QJsonArray>
#include <QRegularExpression>

using namespace tovek;

namespace {

/// Where the drop window's own picture begins: at a run of orange pixels.
std::optional<QPoint> contentIn(const QImage &image)
{
    constexpr int run = 20;
    for (int y = 0; y < image.height(); ++y) {
        int count = 0;
        for (int x = 0; x < image.width(); ++x) {
            count = image.pixel(x, y) == qRgb(0xc0, 0x60, 0x20) ? count + 1 : 0;
            if (count == run)
                return QPoint(x + 1 - run, y);
        }
    }
    return std::nullopt;
}

} // namespace

class TestWaylandWindows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(WaylandDesktop::missing()); }
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

    void photographsTheActiveWindowOnKWin_data()
    {
        QTest::addColumn<double>("scale");
        QTest::newRow("scale 1") << 1.0;
        QTest::newRow("scale 2") << 2.0;
    }
    void photographsTheActiveWindowOnKWin()
    {
        QFETCH(double, scale);
        const WaylandPlan plan = onKWin({{QSize(1600, 1200), scale}});
        SKIP_BECAUSE(WaylandDesktop::missing(plan));
        WaylandSession session(plan);
        QVERIFY2(session.start(), qPrintable(session.error));
        WaylandDesktop &desktop = session.desktop;
        session.point(0, WaylandSession::corner);
        const QImage empty = desktop.lookWhenStill(0);
        QVERIFY(desktop.run(QStringLiteral(TOVEK_DROP_WINDOW), {},
                            {{QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland")}}));
        QTRY_VERIFY(differentPixels(desktop.look(), empty) > 0);
        const QImage screen = desktop.lookWhenStill(0);
        const QString file = desktop.home() + QStringLiteral("/window.png");
        desktop.output(qEnvironmentVariable("TOVEK_PROGRAM"),
                       {"shot", "--window", "active", "-o", file});
        const QImage shot(file);
        const auto inShot = contentIn(shot);
        const auto onScreen = contentIn(screen);
        QVERIFY(inShot && onScreen);
        QCOMPARE(differentPixels(shot, screen.copy(QRect(*onScreen - *inShot, shot.size()))), 0);
        // All of it, and beside it at most a border and a title.
        const QRect content(*inShot, QSize(400, 300) * scale);
        QVERIFY(shot.rect().contains(content));
        QVERIFY(shot.width() - content.width() <= 20 * scale);
        QVERIFY(shot.height() - content.height() <= 60 * scale);
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
