// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The program on a Wayland desktop: what a person sees and gets, to the pixel.

#include "desktop/wayland/WaylandSession.h"
#include "support/Skip.h"

#include <QRegularExpression>

using namespace tovek;

class TestWaylandCapture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { skipBecause(WaylandDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void openingChangesNotOnePixel_data()
    {
        plans();
        // Of such an output grim makes a picture that is not exact; it is the same one twice.
        QTest::newRow("a fraction of a point is left") << WaylandPlan{{{QSize(1281, 801), 1.5}}};
    }
    void openingChangesNotOnePixel()
    {
        QFETCH(WaylandPlan, plan);
        skipBecause(WaylandDesktop::missing(plan));
        WaylandSession session(plan);
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        for (int look = 0; look < 3; ++look) {
            for (int i = 0; i < session.before.size(); ++i)
                QCOMPARE(WaylandSession::differences(session.desktop.look(i), session.before[i]),
                         0);
        }
        QVERIFY(session.tap("Escape"));
        for (int i = 0; i < session.before.size(); ++i)
            QTRY_COMPARE(differentPixels(session.desktop.look(i), session.before[i]), 0);
    }

    void copiesExactlyTheSelection_data() { plans(); }
    void copiesExactlyTheSelection()
    {
        QFETCH(WaylandPlan, plan);
        skipBecause(WaylandDesktop::missing(plan));
        WaylandSession session(plan);
        QVERIFY2(session.start(), qPrintable(session.error));
        const int last = int(plan.monitors.size()) - 1;
        const double scale = plan.monitors[size_t(last)].scale;
        const QSize size = session.desktop.look(last).size();
        // The pointer moves in points; places that are whole in both at each scale are exact.
        const auto at = [&](int x, int y) { return QPointF(x, y) * scale; };
        const auto right = double(size.width());
        const auto bottom = double(size.height());
        const struct
        {
            const char *name;
            QPointF from, to;
        } drags[]{
            {"down and right", at(200, 104), at(420, 308)},
            {"up and left", at(420, 308), at(200, 104)},
            {"up and right", at(200, 308), at(420, 104)},
            {"down and left", at(420, 104), at(200, 308)},
            {"from the left edge", at(0, 300), at(156, 424)},
            {"from the top edge", at(400, 0), at(516, 132)},
            {"to the right edge", at(300, 300), {right, 380 * scale}},
            {"to the bottom edge", at(300, 200), {420 * scale, bottom}},
        };
        for (const auto &drag : drags) {
            // sway 1.7 keeps the pointer a whole point away from these edges.
            const bool isReachable =
                scale == 1 || (drag.to.x() < size.width() && drag.to.y() < size.height());
            if (!isReachable)
                continue;
            QVERIFY2(session.open(), drag.name);
            session.select(last, drag.from, drag.to);
            QVERIFY2(session.tap("Return"), drag.name);
            const QImage image = session.pasted();
            const QImage expected = session.expected(last, QRectF(drag.from, drag.to).normalized());
            QVERIFY2(image.size() == expected.size(),
                     qPrintable(QStringLiteral("%1: %2 x %3, not %4 x %5")
                                    .arg(QLatin1String(drag.name))
                                    .arg(image.width())
                                    .arg(image.height())
                                    .arg(expected.width())
                                    .arg(expected.height())));
            const int different = differentPixels(image, expected);
            QVERIFY2(
                different == 0,
                qPrintable(QStringLiteral("%1: %2").arg(QLatin1String(drag.name)).arg(different)));
        }
    }

    void showsTheInstantOfTheCommand()
    {
        WaylandSession session;
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        QVERIFY(!session.desktop
                     .tell({QStringLiteral("output %1 bg #ff0000 solid_color")
                                .arg(WaylandDesktop::monitorName(0))})
                     .isNull());
        for (int look = 0; look < 10; ++look)
            QCOMPARE(WaylandSession::differences(session.desktop.look(), session.before[0]), 0);
        session.select(0, {150, 150}, {600, 476});
        QVERIFY(session.tap("Return"));
        QCOMPARE(differentPixels(session.pasted(), session.expected(0, {150, 150, 450, 326})), 0);
        // It was there all the time.
        QTRY_COMPARE(session.desktop.look().pixel(640, 700), qRgb(255, 0, 0));
    }

    void worksWhereAllProgramsAreToldToUseWayland()
    {
        WaylandSession session;
        session.variables = {{QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland")}};
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        session.select(0, {200, 200}, {400, 360});
        QVERIFY(session.tap("Return"));
        QCOMPARE(differentPixels(session.pasted(), session.expected(0, {200, 200, 200, 160})), 0);
    }

    void bringsTheKeyboardToTheScreenOfThePointer()
    {
        WaylandSession session({{{QSize(1280, 800), 1}, {QSize(1600, 1200), 2}}});
        QVERIFY2(session.start(), qPrintable(session.error));
        for (const int monitor : {0, 1}) {
            QVERIFY(session.open());
            session.select(monitor, {200, 200}, {400, 360});
            QVERIFY(session.tap("Return"));
            QCOMPARE(session.pasted().size(), QSize(200, 160));
        }
    }

    void keepsTheKeyboardWhereTheSelectionIs()
    {
        WaylandSession session({{{QSize(1280, 800), 1}, {QSize(1280, 800), 1}}});
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        session.select(0, {200, 200}, {400, 360});
        session.point(1, {300, 300});
        session.point(1, {320, 320});
        QVERIFY(session.tap("Return"));
        QCOMPARE(session.pasted().size(), QSize(200, 160));
    }

    void survivesTheScreenThatGoes()
    {
        WaylandSession session({{{QSize(1280, 800), 1}, {QSize(1600, 1200), 2}}});
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        const QString second = WaylandDesktop::monitorName(1);
        QVERIFY(!session.desktop.tell({QStringLiteral("output %1 disable").arg(second)}).isNull());
        session.select(0, {200, 200}, {400, 360});
        QVERIFY(session.tap("Return"));
        QCOMPARE(differentPixels(session.pasted(), session.expected(0, {200, 200, 200, 160})), 0);
        QVERIFY(session.open());
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

private:
    void plans()
    {
        QTest::addColumn<WaylandPlan>("plan");
        const QSize size(1280, 800);
        for (const double scale : {1.0, 1.25, 1.5, 2.0})
            QTest::addRow("scale %.2f", scale) << WaylandPlan{{{QSize(1200, 960), scale}}};
        QTest::newRow("mixed") << WaylandPlan{{{size, 1}, {QSize(1600, 1200), 2}}};
        for (const char *transform : {"90", "270", "flipped"})
            QTest::addRow("turned %s", transform)
                << WaylandPlan{{{QSize(800, 1280), 1, QString::fromLatin1(transform)}}};
        const auto onKWin = [](std::vector<WaylandMonitor> monitors) {
            return WaylandPlan{std::move(monitors), false, WaylandPlan::Compositor::kwin};
        };
        QTest::newRow("KWin") << onKWin({{size, 1}});
        QTest::newRow("KWin, scale 2") << onKWin({{QSize(1600, 1200), 2}});
        QTest::newRow("KWin, two") << onKWin({{size, 1}, {size, 1}});
    }
};

QTEST_GUILESS_MAIN(TestWaylandCapture)
#include "tst_WaylandCapture.moc"
