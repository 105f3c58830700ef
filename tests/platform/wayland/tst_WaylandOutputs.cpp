// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/WaylandOutputs.h"
#include "platform/wayland/capture/WaylandScreenGrabber.h"

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

    void arrangesNativePixelsAsTheOutputsAre_data()
    {
        using Outputs = std::vector<WaylandOutput>;
        QTest::addColumn<Outputs>("outputs");
        QTest::addColumn<std::vector<QPoint>>("corners");
        const auto row = [](const char *name, const Outputs &outputs,
                            const std::vector<QPoint> &corners) {
            QTest::newRow(name) << outputs << corners;
        };
        row("none", {}, {});
        row("one, far from the origin", {output({1280, 800}, {300, 200}, 1)}, {{0, 0}});
        row("a larger scale at the right",
            {output({1280, 800}, {0, 0}, 1), output({1600, 1200}, {1280, 0}, 2)},
            {{0, 0}, {1280, 0}});
        row("a larger scale at the left",
            {output({1600, 1200}, {0, 0}, 2), output({1280, 800}, {800, 0}, 1)},
            {{0, 0}, {1600, 0}});
        row("the first one at the right",
            {output({1280, 800}, {800, 0}, 1), output({1600, 1200}, {0, 0}, 2)},
            {{1600, 0}, {0, 0}});
        row("lower", {output({800, 600}, {0, 0}, 1), output({800, 600}, {800, 100}, 1)},
            {{0, 0}, {800, 100}});
        row("above", {output({800, 600}, {0, 0}, 1), output({1600, 1200}, {100, -600}, 2)},
            {{0, 1200}, {100, 0}});
        row("fractions", {output({1600, 1200}, {0, 0}, 1.5), output({1366, 768}, {1066, 0}, 1.25)},
            {{0, 0}, {1600, 0}});
        row("three in a corner",
            {output({1600, 1200}, {0, 0}, 2), output({800, 600}, {800, 0}, 1),
             output({800, 600}, {0, 600}, 1)},
            {{0, 0}, {1600, 0}, {0, 1200}});
    }
    void arrangesNativePixelsAsTheOutputsAre()
    {
        QFETCH(std::vector<WaylandOutput>, outputs);
        QFETCH(std::vector<QPoint>, corners);
        const std::vector<QRect> rects = nativeRects(outputs);
        QCOMPARE(rects.size(), outputs.size());
        for (size_t i = 0; i < rects.size(); ++i) {
            QCOMPARE(rects[i].topLeft(), corners[i]);
            QCOMPARE(rects[i].size(), outputs[i].native);
            for (size_t other = 0; other < i; ++other)
                QVERIFY(!rects[i].intersects(rects[other]));
        }
    }

private:
    static WaylandOutput output(QSize native, QPoint at, double scale)
    {
        WaylandOutput output;
        output.native = native;
        output.scale = scale;
        output.logical =
            QRect(at, QSize(int(native.width() / scale), int(native.height() / scale)));
        return output;
    }
};

QTEST_APPLESS_MAIN(TestWaylandOutputs)
#include "tst_WaylandOutputs.moc"
