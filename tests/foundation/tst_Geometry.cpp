// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Geometry.h"

#include <QTest>

using namespace tovek;

class TestGeometry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void containsItsBottomLeftEdgesOnly_data()
    {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<bool>("expected");
        QTest::newRow("bottom left corner") << 10.0 << 20.0 << true;
        QTest::newRow("left of it") << 9.99 << 20.0 << false;
        QTest::newRow("below it") << 10.0 << 19.99 << false;
        QTest::newRow("just inside the top right") << 39.99 << 59.99 << true;
        QTest::newRow("right edge") << 40.0 << 30.0 << false;
        QTest::newRow("top edge") << 20.0 << 60.0 << false;
    }
    void containsItsBottomLeftEdgesOnly()
    {
        QFETCH(double, x);
        QFETCH(double, y);
        QTEST((Rect{10, 20, 30, 40}.contains({x, y})), "expected");
    }

    void spansTwoPointsInAnyOrder()
    {
        const Rect expected{1, 2, 3, 4};
        QVERIFY((Rect::spanning({1, 2}, {4, 6}) == expected));
        QVERIFY((Rect::spanning({4, 6}, {1, 2}) == expected));
        QVERIFY((Rect::spanning({1, 6}, {4, 2}) == expected));
    }

    void scalesARegionToEveryPixelItTouches_data()
    {
        QTest::addColumn<QRegion>("region");
        QTest::addColumn<double>("factor");
        QTest::addColumn<QRegion>("scaledRegion");
        QTest::newRow("nothing") << QRegion() << 2.0 << QRegion();
        QTest::newRow("whole") << QRegion(1, 2, 3, 4) << 2.0 << QRegion(2, 4, 6, 8);
        QTest::newRow("between pixels") << QRegion(1, 2, 3, 4) << 1.5 << QRegion(1, 3, 5, 6);
        QTest::newRow("down") << QRegion(3, 3, 3, 3) << 0.5 << QRegion(1, 1, 2, 2);
        QTest::newRow("two") << QRegion(0, 0, 2, 2).united(QRect(4, 4, 2, 2)) << 2.0
                             << QRegion(0, 0, 4, 4).united(QRect(8, 8, 4, 4));
    }
    void scalesARegionToEveryPixelItTouches()
    {
        QFETCH(QRegion, region);
        QFETCH(double, factor);
        QTEST(scaled(region, factor), "scaledRegion");
    }
    void flipsOnceBetweenPointsAndWidgets()
    {
        const ViewSpace space{{1440, 900}, 2};
        QCOMPARE(space.widgetFromPoint({10, 0}), QPointF(10, 900));
        QVERIFY((space.pointFromWidget({10, 0}) == Point{10, 900}));
        QCOMPARE(space.widgetFromRect({10, 20, 30, 40}), QRectF(10, 840, 30, 40));
        QCOMPARE(space.pixelsFromRect({10, 20, 30, 40}), QRectF(20, 1680, 60, 80));
    }
};

QTEST_APPLESS_MAIN(TestGeometry)
#include "tst_Geometry.moc"
