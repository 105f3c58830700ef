// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// A capture on a Wayland desktop: its instant and its keyboard.

#include "desktop/wayland/WaylandSession.h"
#include "support/Skip.h"

#include <QLibraryInfo>
#include <QRegularExpression>

using namespace tovek;

class TestWaylandCapture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(WaylandDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

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

    /// Loading them takes longer than anything else that happens when the button comes up.
    void hasTheUsersCursorsBeforeTheyAreNeeded()
    {
        if (QLibraryInfo::version() >= QVersionNumber(6, 8))
            QSKIP("the toolkit leaves them to the compositor");
        WaylandSession session;
        QVERIFY2(session.start(), qPrintable(session.error));
        session.point(0, {300, 300});
        QVERIFY(session.open());
        const auto hasCursors = [&] {
            QFile maps(QStringLiteral("/proc/%1/maps").arg(session.tovek->pid()));
            return maps.open(QIODevice::ReadOnly)
                && maps.readAll().contains("memfd:wayland-cursor");
        };
        QTRY_VERIFY(hasCursors());
        session.select(0, {200, 200}, {400, 360});
        QVERIFY(session.tap("Return"));
        QCOMPARE(session.pasted().size(), QSize(200, 160));
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
};

QTEST_GUILESS_MAIN(TestWaylandCapture)
#include "tst_WaylandCapture.moc"
