// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/WaylandOutputs.h"

#include <QTest>

using namespace tovek;

class TestWaylandOutputs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheScaleBehindARoundedSize_data()
    {
        QTest::addColumn<QSize>("native");
        QTest::addColumn<QSize>("logical");
        QTest::addColumn<double>("scale");
        QTest::newRow("1") << QSize(1280, 800) << QSize(1280, 800) << 1.0;
        QTest::newRow("2") << QSize(1600, 1200) << QSize(800, 600) << 2.0;
        QTest::newRow("1.5, cut off") << QSize(1600, 1200) << QSize(1066, 800) << 1.5;
        QTest::newRow("1.5, rounded up") << QSize(1600, 1200) << QSize(1067, 800) << 1.5;
        QTest::newRow("1.25") << QSize(1366, 768) << QSize(1092, 614) << 1.25;
        QTest::newRow("1.75") << QSize(3840, 2160) << QSize(2194, 1234) << 1.75;
        QTest::newRow("1.2") << QSize(2560, 1440) << QSize(2133, 1200) << 1.2;
        QTest::newRow("4/3") << QSize(1920, 1080) << QSize(1440, 810) << 4.0 / 3;
        QTest::newRow("3") << QSize(3840, 2160) << QSize(1280, 720) << 3.0;
        QTest::newRow("turned aside") << QSize(1080, 1920) << QSize(720, 1280) << 1.5;
        QTest::newRow("below 1") << QSize(1280, 800) << QSize(2560, 1600) << 0.5;
        QTest::newRow("no size yet") << QSize(1280, 800) << QSize() << 1.0;
    }
    void findsTheScaleBehindARoundedSize()
    {
        QFETCH(QSize, native);
        QFETCH(QSize, logical);
        QTEST(outputScale(native, logical), "scale");
    }
};

QTEST_APPLESS_MAIN(TestWaylandOutputs)
#include "tst_WaylandOutputs.moc"
