// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Blur.h"

#include <QRegularExpression>
#include <QTest>

#include <cmath>

using namespace tovek;

namespace {

QImage plain(QColor color, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(60, 40, format);
    image.fill(color);
    return image;
}

/// White on the right half of black.
QImage edge()
{
    QImage image = plain(Qt::black);
    for (int y = 0; y < 40; ++y) {
        for (int x = 30; x < 60; ++x)
            image.setPixel(x, y, qRgb(255, 255, 255));
    }
    return image;
}

} // namespace

class TestBlur : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void leavesAPlainPictureAsItIs_data()
    {
        QTest::addColumn<double>("deviation");
        QTest::newRow("a little") << 0.3;
        QTest::newRow("a pixel") << 1.0;
        QTest::newRow("some") << 6.5;
        QTest::newRow("farther than the picture") << 50.0;
    }
    void leavesAPlainPictureAsItIs()
    {
        QFETCH(double, deviation);
        for (const QColor color : {QColor(12, 200, 255), QColor(Qt::white), QColor(Qt::black)})
            QCOMPARE(blurred(plain(color), deviation), plain(color));
    }

    void returnsThePictureForNoDeviation()
    {
        QImage image = plain(Qt::white);
        image.setPixel(5, 5, qRgb(1, 2, 3));
        QCOMPARE(blurred(image, 0), image);
        QCOMPARE(blurred(image, -1), image);
        QVERIFY(blurred(QImage(), 5).isNull());
    }

    void spreadsAPointEvenly()
    {
        QImage image = plain(Qt::black);
        image.setPixel(30, 20, qRgb(255, 255, 255));
        const QImage soft = blurred(image, std::sqrt(2.0));
        const int middle = qRed(soft.pixel(30, 20));
        // Three boxes of three: (7/27)^2 of the point stays.
        QVERIFY(std::abs(middle - 17) <= 2);
        QCOMPARE(qRed(soft.pixel(28, 20)), qRed(soft.pixel(32, 20)));
        QCOMPARE(qRed(soft.pixel(30, 18)), qRed(soft.pixel(30, 22)));
        QVERIFY(qRed(soft.pixel(29, 20)) < middle);
        QCOMPARE(soft.pixel(34, 20), qRgb(0, 0, 0));
        QCOMPARE(soft.pixel(30, 24), qRgb(0, 0, 0));
    }

    void softensAnEdgeAsAGaussianDoes_data()
    {
        QTest::addColumn<double>("deviation");
        QTest::newRow("2 pixels") << 2.0;
        QTest::newRow("4.5 pixels") << 4.5;
        QTest::newRow("8 pixels") << 8.0;
    }
    void softensAnEdgeAsAGaussianDoes()
    {
        QFETCH(double, deviation);
        const QImage soft = blurred(edge(), deviation);
        for (int x = 0; x < 60; ++x) {
            const double distance = x + 0.5 - 30;
            const double exact = 255 * 0.5 * (1 + std::erf(distance / deviation / std::sqrt(2.0)));
            QVERIFY2(std::abs(qRed(soft.pixel(x, 20)) - exact) <= 5,
                     qPrintable(QStringLiteral("%1: %2, not %3")
                                    .arg(x)
                                    .arg(qRed(soft.pixel(x, 20)))
                                    .arg(exact)));
        }
    }

    void blursBothWaysAlike()
    {
        QImage square(50, 50, QImage::Format_RGB32);
        square.fill(Qt::black);
        for (int i = 0; i < 50; ++i)
            square.setPixel(i, 17, qRgb(250, 120, 30));
        const QTransform turn(0, 1, 1, 0, 0, 0);
        QCOMPARE(blurred(square.transformed(turn), 3), blurred(square, 3).transformed(turn));
    }

    void spreadsWhatIsOpaqueIntoWhatIsNot()
    {
        QImage image = plain(Qt::transparent, QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < 40; ++y) {
            for (int x = 30; x < 60; ++x)
                image.setPixelColor(x, y, QColor(255, 0, 0));
        }
        const QImage soft = blurred(image, 4);
        QCOMPARE(soft.format(), QImage::Format_ARGB32_Premultiplied);
        QCOMPARE(soft.pixelColor(0, 20), QColor(Qt::transparent));
        QCOMPARE(soft.pixelColor(59, 20), QColor(255, 0, 0));
        const QColor between = soft.pixelColor(29, 20);
        QVERIFY(between.alpha() > 80 && between.alpha() < 128);
        // Fainter, not darker.
        QCOMPARE(between.red(), 255);
    }

    void keepsThePictureOpaque()
    {
        const QImage soft = blurred(edge(), 4);
        QCOMPARE(soft.format(), QImage::Format_RGB32);
        QCOMPARE(qAlpha(soft.pixel(30, 20)), 255);
    }
};

QTEST_APPLESS_MAIN(TestBlur)
#include "tst_Blur.moc"
