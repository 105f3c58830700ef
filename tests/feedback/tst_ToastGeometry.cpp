// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "feedback/ToastGeometry.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestToastGeometry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void isNeverSmallerThanAToast_data()
    {
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("height");
        QTest::addColumn<double>("expectedWidth");
        QTest::addColumn<double>("expectedHeight");
        QTest::newRow("one character") << 60.0 << 37.0 << 100.0 << 40.0;
        QTest::newRow("just too small") << 99.5 << 39.5 << 100.0 << 40.0;
        QTest::newRow("exactly") << 100.0 << 40.0 << 100.0 << 40.0;
        QTest::newRow("larger") << 100.5 << 40.5 << 100.5 << 40.5;
        QTest::newRow("long and flat") << 300.0 << 20.0 << 300.0 << 40.0;
    }
    void isNeverSmallerThanAToast()
    {
        QFETCH(double, width);
        QFETCH(double, height);
        const Size content = ToastGeometry::contentSize({width, height});
        QTEST(content.width, "expectedWidth");
        QTEST(content.height, "expectedHeight");
    }

    void leavesAMarginOnEverySide()
    {
        QVERIFY((ToastGeometry::panelSize({100, 40}) == Size{180, 120}));
    }

    void standsOnTheLowestFifthOfItsScreen_data()
    {
        QTest::addColumn<double>("screenX");
        QTest::addColumn<double>("screenY");
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::newRow("main screen") << 0.0 << 0.0 << 870.0 << 176.0;
        QTest::newRow("right of it") << 1920.0 << 0.0 << 2790.0 << 176.0;
        QTest::newRow("left of it and above") << -1920.0 << 1080.0 << -1050.0 << 1256.0;
    }
    void standsOnTheLowestFifthOfItsScreen()
    {
        QFETCH(double, screenX);
        QFETCH(double, screenY);
        QFETCH(double, x);
        QFETCH(double, y);
        const Rect frame = ToastGeometry::panelFrame({100, 40}, {screenX, screenY, 1920, 1080});
        QVERIFY((frame == Rect{x, y, 180, 120}));
    }
};

QTEST_APPLESS_MAIN(TestToastGeometry)
#include "tst_ToastGeometry.moc"
