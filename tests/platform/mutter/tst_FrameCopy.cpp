// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/mutter/FrameCopy.h"

#include <QTest>

using namespace tovek;

class TestFrameCopy : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void makesPixelsOfEitherOrder_data()
    {
        QTest::addColumn<bool>("isRgb");
        QTest::addColumn<quint32>("first");
        QTest::addColumn<quint32>("last");
        QTest::newRow("blue first") << false << 0xff030201u << 0xff232221u;
        QTest::newRow("red first") << true << 0xff010203u << 0xff212223u;
    }
    void makesPixelsOfEitherOrder()
    {
        QFETCH(bool, isRgb);
        // Two rows of two pixels, behind four bytes and with four bytes of padding between them.
        const std::uint8_t memory[] = {9, 9, 9, 9, 1, 2, 3, 0x80, 0x11, 0x12, 0x13, 0,
                                       9, 9, 9, 9, 5, 6, 7, 0xff, 0x21, 0x22, 0x23, 1};
        FrameLayout layout{sizeof memory, 4, 12, 2, 2};
        if (isRgb)
            layout.order = FrameLayout::Order::rgb;
        QVERIFY(layout.isWhole());
        quint32 pixels[5] = {0, 0, 0, 0, 42};
        copyFrame(layout, memory, reinterpret_cast<std::uint8_t *>(pixels));
        QTEST(pixels[0], "first");
        QTEST(pixels[3], "last");
        QCOMPARE(pixels[4], 42u);
    }

    void knowsWhatDoesNotLieInItsMemory_data()
    {
        QTest::addColumn<qint64>("memory");
        QTest::addColumn<qint64>("offset");
        QTest::addColumn<qint64>("stride");
        QTest::addColumn<int>("height");
        QTest::addColumn<bool>("isWhole");
        QTest::newRow("exactly") << qint64(60) << qint64(0) << qint64(20) << 3 << true;
        QTest::newRow("no padding after the last row")
            << qint64(48) << qint64(0) << qint64(20) << 3 << true;
        QTest::newRow("a byte short") << qint64(47) << qint64(0) << qint64(20) << 3 << false;
        QTest::newRow("too far on") << qint64(60) << qint64(13) << qint64(20) << 3 << false;
        QTest::newRow("just not too far on") << qint64(60) << qint64(12) << qint64(20) << 3 << true;
        QTest::newRow("begins behind it") << qint64(60) << qint64(61) << qint64(20) << 1 << false;
        QTest::newRow("rows over each other") << qint64(60) << qint64(0) << qint64(7) << 3 << false;
        QTest::newRow("upside down") << qint64(60) << qint64(40) << qint64(-20) << 3 << false;
        QTest::newRow("no rows") << qint64(60) << qint64(0) << qint64(20) << 0 << false;
        QTest::newRow("one row") << qint64(8) << qint64(0) << qint64(20) << 1 << true;
    }
    void knowsWhatDoesNotLieInItsMemory()
    {
        QFETCH(qint64, memory);
        QFETCH(qint64, offset);
        QFETCH(qint64, stride);
        QFETCH(int, height);
        const FrameLayout layout{size_t(memory), size_t(offset), stride, 2, std::uint32_t(height)};
        QTEST(layout.isWhole(), "isWhole");
    }

    void hasNoPixelsWithoutColumns() { QVERIFY(!(FrameLayout{60, 0, 20, 0, 3}.isWhole())); }
};

QTEST_APPLESS_MAIN(TestFrameCopy)
#include "tst_FrameCopy.moc"
