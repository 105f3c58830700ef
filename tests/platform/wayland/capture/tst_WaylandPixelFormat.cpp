// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/capture/WaylandPixelFormat.h"

#include <QTest>

#include <wayland-client-protocol.h>

using namespace tovek;

class TestWaylandPixelFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTheBytesOfEachFormat_data()
    {
        QTest::addColumn<uint>("format");
        QTest::addColumn<QByteArray>("bytes");
        // Orange, red 255, green 128, blue 0, as it lies in memory; no alpha where there could be.
        const QByteArray bgr = QByteArray::fromHex("0080ff00");
        const QByteArray rgb = QByteArray::fromHex("ff800000");
        QTest::newRow("XRGB8888") << uint(WL_SHM_FORMAT_XRGB8888) << bgr;
        QTest::newRow("ARGB8888") << uint(WL_SHM_FORMAT_ARGB8888) << bgr;
        QTest::newRow("XBGR8888") << uint(WL_SHM_FORMAT_XBGR8888) << rgb;
        QTest::newRow("ABGR8888") << uint(WL_SHM_FORMAT_ABGR8888) << rgb;
        QTest::newRow("RGB888") << uint(WL_SHM_FORMAT_RGB888) << bgr.left(3);
        QTest::newRow("BGR888") << uint(WL_SHM_FORMAT_BGR888) << rgb.left(3);
        const auto word = [](quint32 value) {
            return QByteArray(reinterpret_cast<const char *>(&value), sizeof value);
        };
        constexpr quint32 most = 1023, half = 514; // of ten bits
        QTest::newRow("XRGB2101010")
            << uint(WL_SHM_FORMAT_XRGB2101010) << word(most << 20 | half << 10);
        QTest::newRow("ARGB2101010")
            << uint(WL_SHM_FORMAT_ARGB2101010) << word(most << 20 | half << 10);
        QTest::newRow("XBGR2101010") << uint(WL_SHM_FORMAT_XBGR2101010) << word(most | half << 10);
        QTest::newRow("ABGR2101010") << uint(WL_SHM_FORMAT_ABGR2101010) << word(most | half << 10);
    }
    void readsTheBytesOfEachFormat()
    {
        QFETCH(uint, format);
        QFETCH(QByteArray, bytes);
        const QImage image(reinterpret_cast<const uchar *>(bytes.constData()), 1, 1, bytes.size(),
                           imageFormat(format));
        QCOMPARE(image.convertToFormat(QImage::Format_RGB32).pixel(0, 0), qRgb(255, 128, 0));
    }

    void knowsWhatItDoesNotKnow()
    {
        QCOMPARE(imageFormat(WL_SHM_FORMAT_YUYV), QImage::Format_Invalid);
    }

    void turnsUpsideDownPicturesBack()
    {
        QImage image(1, 2, QImage::Format_RGB32);
        image.setPixel(0, 0, qRgb(1, 1, 1));
        image.setPixel(0, 1, qRgb(2, 2, 2));
        QCOMPARE(upright(image, WL_OUTPUT_TRANSFORM_NORMAL, true).pixel(0, 0), qRgb(2, 2, 2));
        QCOMPARE(upright(image, WL_OUTPUT_TRANSFORM_NORMAL, false).pixel(0, 0), qRgb(1, 1, 1));
        QCOMPARE(upright(image, WL_OUTPUT_TRANSFORM_90, false).size(), QSize(2, 1));
    }
};

QTEST_APPLESS_MAIN(TestWaylandPixelFormat)
#include "tst_WaylandPixelFormat.moc"
