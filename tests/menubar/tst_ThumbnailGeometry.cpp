// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "menubar/ThumbnailGeometry.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestThumbnailGeometry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void scalesToTheItemAndToTheDragBox_data()
    {
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("height");
        QTest::addColumn<double>("thumbnailWidth");
        QTest::addColumn<QSizeF>("dragImage");
        QTest::newRow("wide") << 1600.0 << 400.0 << 72.0 << QSizeF(200, 50);
        QTest::newRow("square") << 300.0 << 300.0 << 18.0 << QSizeF(200, 200);
        QTest::newRow("tall") << 100.0 << 400.0 << 4.5 << QSizeF(50, 200);
        QTest::newRow("tiny grows") << 20.0 << 10.0 << 36.0 << QSizeF(200, 100);
    }
    void scalesToTheItemAndToTheDragBox()
    {
        QFETCH(double, width);
        QFETCH(double, height);
        const Size thumbnail = thumbnailSize({width, height});
        QTEST(thumbnail.width, "thumbnailWidth");
        QCOMPARE(thumbnail.height, 18.0);
        const Size drag = dragImageSize({width, height});
        QTEST(QSizeF(drag.width, drag.height), "dragImage");
    }

    void isEmptyForAnEmptyImage()
    {
        QVERIFY((thumbnailSize({10, 0}) == Size{}));
        QVERIFY((dragImageSize({10, 0}) == Size{}));
        QVERIFY((dragImageSize({0, 10}) == Size{}));
    }

    void dragsBeyondThreePointsOnly_data()
    {
        QTest::addColumn<QPointF>("to");
        QTest::addColumn<bool>("expected");
        QTest::newRow("a wobble") << QPointF(12, 20) << false;
        QTest::newRow("exactly three") << QPointF(13, 20) << false;
        QTest::newRow("just beyond") << QPointF(13.01, 20) << true;
        QTest::newRow("diagonal, less") << QPointF(8, 18) << false;
        QTest::newRow("diagonal, more") << QPointF(7.8, 17.8) << true;
    }
    void dragsBeyondThreePointsOnly()
    {
        QFETCH(QPointF, to);
        QTEST(isDrag(QPointF(10, 20), to), "expected");
    }

    void namesTheDraggedFileByTheTime()
    {
        QCOMPARE(dragFileName(QDateTime(QDate(2025, 3, 7), QTime(4, 5, 9))),
                 QStringLiteral("Screenshot 2025-03-07-040509.png"));
    }

    void opensTheMenuBesideTheItem_data()
    {
        QTest::addColumn<QRect>("item");
        QTest::addColumn<QPoint>("expected");
        QTest::newRow("panel on top") << QRect(500, 0, 30, 24) << QPoint(500, 29);
        QTest::newRow("panel at the bottom") << QRect(500, 776, 30, 24) << QPoint(500, 471);
        QTest::newRow("just room below") << QRect(500, 471, 30, 24) << QPoint(500, 500);
        QTest::newRow("one pixel short") << QRect(500, 472, 30, 24) << QPoint(500, 167);
        QTest::newRow("at the right edge") << QRect(990, 0, 30, 24) << QPoint(800, 29);
        QTest::newRow("left of the screen") << QRect(-5, 0, 30, 24) << QPoint(0, 29);
    }
    void opensTheMenuBesideTheItem()
    {
        QFETCH(QRect, item);
        QTEST(menuOrigin(item, QSize(200, 300), QRect(0, 0, 1000, 800)), "expected");
    }
};

QTEST_APPLESS_MAIN(TestThumbnailGeometry)
#include "tst_ThumbnailGeometry.moc"
