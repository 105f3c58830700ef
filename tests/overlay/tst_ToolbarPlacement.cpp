// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/ToolbarPlacement.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestToolbarPlacement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void keepsBelowElseAboveElseInside_data()
    {
        QTest::addColumn<Rect>("selection");
        QTest::addColumn<Rect>("frame");
        QTest::addColumn<bool>("isAtTop");
        // The view is 1000 by 800, the toolbar 300 by 50.
        QTest::newRow("below") << Rect{300, 300, 400, 200} << Rect{350, 242, 300, 50} << false;
        QTest::newRow("just room below")
            << Rect{300, 66, 400, 200} << Rect{350, 8, 300, 50} << false;
        QTest::newRow("no room below")
            << Rect{300, 65.5, 400, 200} << Rect{350, 273.5, 300, 50} << true;
        QTest::newRow("at the bottom") << Rect{300, 0, 400, 200} << Rect{350, 208, 300, 50} << true;
        QTest::newRow("just room above")
            << Rect{300, 0, 400, 734} << Rect{350, 742, 300, 50} << true;
        QTest::newRow("no room above")
            << Rect{300, 0, 400, 734.5} << Rect{350, 8, 300, 50} << false;
        QTest::newRow("no room above, higher")
            << Rect{300, 20, 400, 780} << Rect{350, 28, 300, 50} << false;
        QTest::newRow("whole screen") << Rect{0, 0, 1000, 800} << Rect{350, 8, 300, 50} << false;
        QTest::newRow("left edge") << Rect{0, 300, 40, 100} << Rect{8, 242, 300, 50} << false;
        QTest::newRow("just not clamped left")
            << Rect{138, 300, 40, 100} << Rect{8, 242, 300, 50} << false;
        QTest::newRow("not clamped left")
            << Rect{139, 300, 40, 100} << Rect{9, 242, 300, 50} << false;
        QTest::newRow("right edge") << Rect{960, 300, 40, 100} << Rect{692, 242, 300, 50} << false;
        QTest::newRow("not clamped right")
            << Rect{821, 300, 40, 100} << Rect{691, 242, 300, 50} << false;
        QTest::newRow("beyond the top")
            << Rect{300, 900, 100, 100} << Rect{200, 742, 300, 50} << false;
        QTest::newRow("beyond the bottom")
            << Rect{300, -300, 100, 200} << Rect{200, 8, 300, 50} << true;
    }
    void keepsBelowElseAboveElseInside()
    {
        QFETCH(Rect, selection);
        QFETCH(Rect, frame);
        QFETCH(bool, isAtTop);
        const ToolbarPlacement placement = placedToolbar(selection, {1000, 800}, {300, 50});
        QVERIFY2(placement.frame == frame, qPrintable(toString(placement.frame)));
        QCOMPARE(placement.isToolbarAtTop, isAtTop);
    }

    void startsAtTheMarginInAViewThatIsTooSmall()
    {
        const ToolbarPlacement placement = placedToolbar({0, 0, 50, 40}, {100, 40}, {300, 50});
        QVERIFY((placement.frame == Rect{8, 8, 300, 50}));
    }

    void snapsToWholePixels_data()
    {
        QTest::addColumn<double>("scale");
        QTest::addColumn<Rect>("frame");
        QTest::addColumn<Rect>("expected");
        QTest::newRow("whole already") << 1.0 << Rect{350, 242, 300, 48} << Rect{350, 242, 300, 48};
        QTest::newRow("half a point")
            << 2.0 << Rect{350.4, 241.7, 300, 48} << Rect{350, 242, 300, 48};
        QTest::newRow("one and a half")
            << 1.5 << Rect{351, 243, 300, 48} << Rect{352, 242, 300, 48};
        QTest::newRow("one and a quarter")
            << 1.25 << Rect{351, 243, 300, 48} << Rect{352, 244, 300, 48};
        QTest::newRow("out of reach") << 1.1 << Rect{351, 243, 300, 48} << Rect{351, 243, 300, 48};
        QTest::newRow("left and bottom margin")
            << 1.25 << Rect{8, 8, 300, 48} << Rect{8, 8, 300, 48};
        QTest::newRow("right and top margin")
            << 1.5 << Rect{692, 744, 300, 48} << Rect{692, 744, 300, 48};
    }
    void snapsToWholePixels()
    {
        QFETCH(double, scale);
        QFETCH(Rect, frame);
        QFETCH(Rect, expected);
        const Rect snapped = snappedToPixels(frame, {1000, 800}, scale);
        QVERIFY2(snapped == expected, qPrintable(toString(snapped)));
    }

    void snapsInsideTheMarginOfAnOddView()
    {
        // 8 points from the right edge is no multiple of two points here.
        const Rect snapped = snappedToPixels({693, 8, 300, 48}, {1001, 801}, 1.5);
        QCOMPARE(snapped.x, 692.0);
        QCOMPARE(801 - snapped.maxY(), 744.0);
        QVERIFY(snapped.minY() >= 8);
    }

    void putsATooltipWhereThereIsRoom_data()
    {
        QTest::addColumn<Rect>("button");
        QTest::addColumn<bool>("prefersAbove");
        QTest::addColumn<Rect>("expected");
        QTest::newRow("below") << Rect{400, 300, 28, 28} << false << Rect{364, 257, 100, 21};
        QTest::newRow("above") << Rect{400, 300, 28, 28} << true << Rect{364, 350, 100, 21};
        QTest::newRow("just room below") << Rect{400, 43, 28, 28} << false << Rect{364, 0, 100, 21};
        QTest::newRow("no room below") << Rect{400, 42, 28, 28} << false << Rect{364, 92, 100, 21};
        QTest::newRow("no room above") << Rect{400, 730, 28, 28} << true << Rect{364, 687, 100, 21};
        QTest::newRow("left edge") << Rect{10, 300, 28, 28} << false << Rect{8, 257, 100, 21};
        QTest::newRow("right edge") << Rect{960, 300, 28, 28} << false << Rect{892, 257, 100, 21};
    }
    void putsATooltipWhereThereIsRoom()
    {
        QFETCH(Rect, button);
        QFETCH(bool, prefersAbove);
        QFETCH(Rect, expected);
        const Rect frame = framedBeside(button, {100, 21}, {1000, 800}, 22, prefersAbove);
        QVERIFY2(frame == expected, qPrintable(toString(frame)));
    }
};

QTEST_APPLESS_MAIN(TestToolbarPlacement)
#include "tst_ToolbarPlacement.moc"
