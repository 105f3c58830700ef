// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/ImageCrop.h"

#include <QRegularExpression>
#include <QTest>

#include <limits>

using namespace tovek;

class TestImageCrop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void flipsRoundsAndClips_data()
    {
        constexpr double nan = std::numeric_limits<double>::quiet_NaN();
        constexpr double inf = std::numeric_limits<double>::infinity();
        QTest::addColumn<PixelRect>("rect");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("whole") << PixelRect{0, 0, 100, 80} << QRect(0, 0, 100, 80);
        QTest::newRow("top edge") << PixelRect{10, 70, 20, 10} << QRect(10, 0, 20, 10);
        QTest::newRow("bottom edge") << PixelRect{10, 0, 20, 10} << QRect(10, 70, 20, 10);
        QTest::newRow("left edge") << PixelRect{0, 20, 5, 10} << QRect(0, 50, 5, 10);
        QTest::newRow("right edge") << PixelRect{95, 20, 5, 10} << QRect(95, 50, 5, 10);
        QTest::newRow("one pixel") << PixelRect{99, 79, 1, 1} << QRect(99, 0, 1, 1);
        QTest::newRow("a little less than whole")
            << PixelRect{9.9999999, 19.9999999, 29.9999999, 9.9999999} << QRect(10, 50, 30, 10);
        QTest::newRow("a little more than whole")
            << PixelRect{10.0000001, 20.0000001, 30.0000001, 10.0000001} << QRect(10, 50, 30, 10);
        QTest::newRow("half a pixel goes outwards at the right")
            << PixelRect{0, 0, 10.5, 80} << QRect(0, 0, 11, 80);
        QTest::newRow("below half") << PixelRect{0, 0, 10.49, 80} << QRect(0, 0, 10, 80);
        QTest::newRow("past the top") << PixelRect{10, 70, 20, 100} << QRect(10, 0, 20, 10);
        QTest::newRow("past the bottom") << PixelRect{10, -30, 20, 40} << QRect(10, 70, 20, 10);
        QTest::newRow("past the left") << PixelRect{-15, 20, 20, 10} << QRect(0, 50, 5, 10);
        QTest::newRow("past the right") << PixelRect{95, 20, 20, 10} << QRect(95, 50, 5, 10);
        QTest::newRow("past everything") << PixelRect{-9, -9, 500, 500} << QRect(0, 0, 100, 80);
        QTest::newRow("beside") << PixelRect{100, 0, 10, 10} << QRect();
        QTest::newRow("above") << PixelRect{0, 80, 10, 10} << QRect();
        QTest::newRow("below") << PixelRect{0, -10, 10, 10} << QRect();
        QTest::newRow("no width") << PixelRect{10, 10, 0, 10} << QRect();
        QTest::newRow("no height") << PixelRect{10, 10, 10, 0} << QRect();
        QTest::newRow("less than half a pixel") << PixelRect{10, 10, 0.4, 10} << QRect();
        QTest::newRow("negative width") << PixelRect{10, 10, -5, 10} << QRect();
        QTest::newRow("not a number") << PixelRect{nan, 10, 5, 10} << QRect();
        QTest::newRow("infinite") << PixelRect{0, 0, inf, 10} << QRect();
    }
    void flipsRoundsAndClips()
    {
        QFETCH(PixelRect, rect);
        QFETCH(QRect, expected);
        QCOMPARE(cropRect(rect, QSize(100, 80)), expected);
    }

    void losesNoPixelAtFractionalScales_data()
    {
        QTest::addColumn<double>("scale");
        for (const double scale : {1.0, 1.1, 1.25, 1.3333333333333333, 1.5, 1.75, 2.0, 2.6, 3.0})
            QTest::addRow("%g", scale) << scale;
    }
    void losesNoPixelAtFractionalScales()
    {
        QFETCH(double, scale);
        const QSize screen(1920, 1080);
        for (int left = 0; left < 1900; left += 7) {
            const QRect native(left, left / 2, 20 + left % 13, 1080 - left / 2 - left % 5);
            const double bottom = screen.height() - native.y() - native.height();
            const Rect points{native.x() / scale, bottom / scale, native.width() / scale,
                              native.height() / scale};
            QCOMPARE(cropRect(PixelRect::fromPoints(points, scale), screen),
                     native & QRect(QPoint(), screen));
        }
    }

    void cutsTheVeryPixels_data()
    {
        QTest::addColumn<QRect>("rect");
        QTest::newRow("small") << QRect(3, 4, 5, 6);
        QTest::newRow("more than half") << QRect(1, 2, 38, 26);
        QTest::newRow("whole") << QRect(0, 0, 40, 30);
    }
    void cutsTheVeryPixels()
    {
        QFETCH(QRect, rect);
        std::optional<Image> cut;
        QImage expected;
        {
            const Image screenshot{pattern(QImage::Format_RGB32), Size{40, 30}};
            expected = screenshot.bitmap.copy(rect);
            cut = crop(screenshot, flipped(rect), Size{2.5, 3.5});
        }
        // The screenshot is gone; the cut must not need it.
        QVERIFY(cut);
        QCOMPARE(cut->bitmap, expected);
        QCOMPARE(cut->size, (Size{2.5, 3.5}));
        cut->bitmap.setPixel(0, 0, 0xff123456);
        QCOMPARE(cut->bitmap.pixel(0, 0), 0xff123456);
    }

    void cutsEveryFormat_data()
    {
        QTest::addColumn<QImage::Format>("format");
        QTest::newRow("565") << QImage::Format_RGB16;
        QTest::newRow("30 bits") << QImage::Format_RGB30;
        QTest::newRow("24 bits packed") << QImage::Format_RGB888;
        QTest::newRow("with alpha") << QImage::Format_ARGB32_Premultiplied;
    }
    void cutsEveryFormat()
    {
        QFETCH(QImage::Format, format);
        const Image screenshot{pattern(format), Size{40, 30}};
        for (const QRect &rect : {QRect(1, 1, 37, 27), QRect(5, 5, 3, 3)}) {
            const auto cut = crop(screenshot, flipped(rect));
            QVERIFY(cut);
            QCOMPARE(cut->bitmap, screenshot.bitmap.copy(rect));
        }
    }

    void takesThePixelSizeWithoutASizeInPoints()
    {
        const Image screenshot{pattern(QImage::Format_RGB32), Size{20, 15}};
        const auto cut = crop(screenshot, PixelRect{2, 2, 10, 8});
        QVERIFY(cut);
        QCOMPARE(cut->size, (Size{10, 8}));
        QCOMPARE(cut->scale(), 1.0);
    }

    void failsWithoutPixels()
    {
        const Image screenshot{pattern(QImage::Format_RGB32), Size{40, 30}};
        QVERIFY(!crop(Image{}, PixelRect{0, 0, 10, 10}));
        QVERIFY(!crop(screenshot, PixelRect{40, 0, 10, 10}));
        QVERIFY(!crop(screenshot, PixelRect{0, 0, 0, 0}));
    }

private:
    static QImage pattern(QImage::Format format)
    {
        QImage image(40, 30, QImage::Format_RGB32);
        for (int y = 0; y < 30; ++y) {
            for (int x = 0; x < 40; ++x)
                image.setPixel(x, y, qRgb(x * 6, y * 8, x ^ y));
        }
        return image.convertToFormat(format);
    }
    static PixelRect flipped(const QRect &rect)
    {
        return {double(rect.x()), 30.0 - rect.y() - rect.height(), double(rect.width()),
                double(rect.height())};
    }
};

QTEST_APPLESS_MAIN(TestImageCrop)
#include "tst_ImageCrop.moc"
