// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/Blur.h"

#include <QTest>

using namespace tovek;

namespace {

QImage plain(QColor color)
{
    QImage image(60, 40, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

} // namespace

class TestBlur : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leavesAPlainPictureAsItIs()
    {
        const QImage image = plain(QColor(12, 200, 255));
        QCOMPARE(blurred(image, 6), image);
        QCOMPARE(blurred(image, 50), image);
    }

    void returnsThePictureForNoRadius()
    {
        QImage image = plain(Qt::white);
        image.setPixel(5, 5, qRgb(1, 2, 3));
        QCOMPARE(blurred(image, 0), image);
        QVERIFY(blurred(QImage(), 5).isNull());
    }

    void spreadsAPointEvenly()
    {
        QImage image = plain(Qt::black);
        image.setPixel(30, 20, qRgb(255, 255, 255));
        const QImage soft = blurred(image, 1);
        const int middle = qRed(soft.pixel(30, 20));
        // Three boxes of three: (7/27)^2 of the point stays.
        QVERIFY(std::abs(middle - 17) <= 2);
        QCOMPARE(qRed(soft.pixel(28, 20)), qRed(soft.pixel(32, 20)));
        QCOMPARE(qRed(soft.pixel(30, 18)), qRed(soft.pixel(30, 22)));
        QVERIFY(qRed(soft.pixel(29, 20)) < middle);
        QCOMPARE(soft.pixel(34, 20), qRgb(0, 0, 0));
        QCOMPARE(soft.pixel(30, 24), qRgb(0, 0, 0));
    }

    void softensAnEdge()
    {
        QImage image = plain(Qt::black);
        for (int y = 0; y < 40; ++y) {
            for (int x = 30; x < 60; ++x)
                image.setPixel(x, y, qRgb(255, 255, 255));
        }
        const QImage soft = blurred(image, 4);
        int last = -1;
        for (int x = 10; x < 50; ++x) {
            QVERIFY(qRed(soft.pixel(x, 20)) >= last);
            last = qRed(soft.pixel(x, 20));
        }
        QCOMPARE(qRed(soft.pixel(10, 20)), 0);
        QCOMPARE(qRed(soft.pixel(49, 20)), 255);
        QVERIFY(std::abs(qRed(soft.pixel(29, 20)) + qRed(soft.pixel(30, 20)) - 255) < 6);
    }
};

QTEST_APPLESS_MAIN(TestBlur)
#include "tst_Blur.moc"
