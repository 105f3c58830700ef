// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/SizeLabel.h"

#include <QTest>

using namespace tovek;

class TestSizeLabel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsPixels_data()
    {
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("height");
        QTest::addColumn<double>("scale");
        QTest::addColumn<QString>("text");
        QTest::newRow("scale 1") << 100.0 << 50.0 << 1.0 << QStringLiteral("100 \u00d7 50");
        QTest::newRow("scale 2") << 100.0 << 50.0 << 2.0 << QStringLiteral("200 \u00d7 100");
        QTest::newRow("scale 1.25, edges on pixels")
            << 401 / 1.25 << 77 / 1.25 << 1.25 << QStringLiteral("401 \u00d7 77");
        QTest::newRow("scale 1.1, a product just below")
            << 331 / 1.1 << 7 / 1.1 << 1.1 << QStringLiteral("331 \u00d7 7");
        QTest::newRow("less than a pixel is cut")
            << 10.9 << 10.1 << 1.0 << QStringLiteral("10 \u00d7 10");
    }
    void countsPixels()
    {
        QFETCH(double, width);
        QFETCH(double, height);
        QFETCH(double, scale);
        QTEST(sizeLabelText({3, 4, width, height}, scale), "text");
    }

    void findsRoom_data()
    {
        QTest::addColumn<Rect>("selection");
        QTest::addColumn<bool>("isToolbarAtTop");
        QTest::addColumn<Rect>("expected");
        // The screen is 1000 by 800, the box 60 by 20.
        const auto row = [](const char *name, const Rect &selection, bool toolbar,
                            const Rect &expected) {
            QTest::newRow(name) << selection << toolbar << expected;
        };
        row("above", {100, 100, 200, 200}, false, {100, 312, 60, 20});
        row("just room above", {100, 100, 200, 671.9}, false, {100, 783.9, 60, 20});
        row("no room above", {100, 100, 200, 672}, false, {100, 72, 60, 20});
        row("just room below", {100, 28.1, 200, 760}, false, {100, 0.1, 60, 20});
        row("no room at all", {100, 28, 200, 760}, false, {104, 764, 60, 20});
        row("toolbar above: left", {68.1, 100, 200, 200}, true, {0.1, 280, 60, 20});
        row("toolbar above: right", {68, 100, 200, 200}, true, {276, 280, 60, 20});
        row("toolbar above: just room right", {68, 100, 863.9, 200}, true, {939.9, 280, 60, 20});
        row("toolbar above: inside", {68, 100, 864, 200}, true, {72, 276, 60, 20});
    }
    void findsRoom()
    {
        QFETCH(Rect, selection);
        QFETCH(bool, isToolbarAtTop);
        QFETCH(Rect, expected);
        const Rect actual = sizeLabelFrame(selection, {1000, 800}, {60, 20}, isToolbarAtTop);
        QVERIFY2(qAbs(actual.x - expected.x) < 1e-9 && qAbs(actual.y - expected.y) < 1e-9,
                 qPrintable(toString(actual)));
        QVERIFY((actual.size() == expected.size()));
    }
};

QTEST_APPLESS_MAIN(TestSizeLabel)
#include "tst_SizeLabel.moc"
