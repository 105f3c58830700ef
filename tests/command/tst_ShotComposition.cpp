// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/ShotComposition.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

/// A screen each of whose pixels tells where it is.
ScreenPixels screenAt(QRect native)
{
    QImage pixels(native.size(), QImage::Format_RGB32);
    for (int y = 0; y < pixels.height(); ++y) {
        for (int x = 0; x < pixels.width(); ++x)
            pixels.setPixel(x, y, qRgb(native.x() + x, native.y() + y, native.width()));
    }
    return {native, pixels};
}

const QRect left(0, 20, 40, 60), right(40, 0, 80, 100);

} // namespace

class TestShotComposition : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void takesEachPixelFromItsScreen_data()
    {
        QTest::addColumn<QRect>("area");
        QTest::newRow("one screen") << left;
        QTest::newRow("a part of one") << QRect(50, 3, 7, 90);
        QTest::newRow("across two") << QRect(30, 10, 20, 85);
        QTest::newRow("both") << QRect(0, 0, 120, 100);
        QTest::newRow("one pixel of each") << QRect(39, 50, 2, 1);
    }
    void takesEachPixelFromItsScreen()
    {
        QFETCH(QRect, area);
        const QImage image = composeArea(area, {screenAt(left), screenAt(right)});
        QCOMPARE(image.size(), area.size());
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                const QRect screen = right.contains(x, y) ? right : left;
                const QRgb expected =
                    screen.contains(x, y) ? qRgb(x, y, screen.width()) : qRgb(0, 0, 0);
                QCOMPARE(image.pixel(QPoint(x, y) - area.topLeft()), expected);
            }
        }
    }

    void cutsAtTheDesktopsEdges_data()
    {
        QTest::addColumn<QRect>("area");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("inside") << QRect(5, 6, 7, 8) << QRect(5, 6, 7, 8);
        QTest::newRow("beyond the corner") << QRect(-5, -5, 10, 10) << QRect(0, 0, 5, 5);
        QTest::newRow("last pixel") << QRect(119, 99, 50, 50) << QRect(119, 99, 1, 1);
        QTest::newRow("just outside") << QRect(120, 0, 50, 50) << QRect();
    }
    void cutsAtTheDesktopsEdges()
    {
        QFETCH(QRect, area);
        QFETCH(QRect, expected);
        const QRect found = areaOnDesktop(area, {left, right});
        QCOMPARE(found.isEmpty(), expected.isEmpty());
        if (!expected.isEmpty())
            QCOMPARE(found, expected);
    }
};

QTEST_APPLESS_MAIN(TestShotComposition)
#include "tst_ShotComposition.moc"
