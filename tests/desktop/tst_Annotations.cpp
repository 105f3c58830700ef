// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Shapes drawn, changed and removed by mouse and keys on a real desktop, as they are in the copy.

#include "desktop/Drawing.h"
#include "support/Skip.h"

#include <QTest>

using namespace tovek;

class TestAnnotations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void standInTheCopyWhereTheyWereDrawn_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<double>("scale");
        QTest::addColumn<QRect>("box");
        // Strokes are 3 points wide; an arrow's tip has no round end.
        QTest::newRow("rectangle") << QByteArray("r") << 1.0 << QRect(99, 79, 203, 123);
        QTest::newRow("rectangle at scale 2") << QByteArray("r") << 2.0 << QRect(97, 77, 206, 126);
        QTest::newRow("line") << QByteArray("l") << 1.0 << QRect(99, 79, 203, 123);
        QTest::newRow("arrow") << QByteArray("a") << 1.0 << QRect(99, 79, 202, 122);
    }
    void standInTheCopyWhereTheyWereDrawn()
    {
        QFETCH(QByteArray, key);
        QFETCH(double, scale);
        QFETCH(QRect, box);
        Drawing d(scale);
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap(key.constData()));
        d.drag({100, 80}, {300, 200});
        const QImage image = d.copied();
        QCOMPARE(image.size(), QSize(500, 350));
        const QRect actual = boxOf(image, Ink::red);
        QVERIFY2(isNear(actual, box), qPrintable(toText(actual)));
        // Nothing else is changed.
        QImage rest = image;
        const QImage expected = d.untouched();
        for (int y = 0; y < rest.height(); ++y) {
            for (int x = 0; x < rest.width(); ++x) {
                if (actual.adjusted(-3, -3, 3, 3).contains(x, y))
                    rest.setPixel(x, y, expected.pixel(x, y));
            }
        }
        QCOMPARE(differentPixels(rest, expected), 0);
    }

    void leaveNoHandlesInTheCopy()
    {
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("l"));
        d.drag({100, 100}, {300, 100});
        d.click({200, 100});
        const QImage image = d.copied();
        // A handle is a square of 8 points at the line's end.
        QVERIFY(isNear(boxOf(image, Ink::red), QRect(99, 99, 203, 3)));
        QCOMPARE(image.pixel(100, 104), d.untouched().pixel(100, 104));
    }

    void haveTheirWidthAndNoFilling_data()
    {
        QTest::addColumn<double>("scale");
        for (double scale : {1.0, 2.0})
            QTest::addRow("scale %.0f", scale) << scale;
    }
    void haveTheirWidthAndNoFilling()
    {
        QFETCH(double, scale);
        Drawing d(scale);
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("r"));
        d.drag({100, 80}, {300, 200});
        const QImage image = d.copied();
        // Three points on either side of the edges, which lie between two pixels.
        const int reach = int(1.5 * scale);
        const int corner = qCeil(1.5 * scale);
        for (const int x : {150, 250}) {
            for (int y = 80 - reach; y < 80 + reach; ++y)
                QCOMPARE(image.pixel(x, y), Ink::red);
            for (int y : {80 - reach - 2, 80 + reach + 1, 140})
                QCOMPARE(image.pixel(x, y), d.untouched().pixel(x, y));
        }
        // The corners are round.
        QVERIFY(image.pixel(100 - corner, 80 - corner) != Ink::red);
    }

    void pointWithAFilledHead()
    {
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("a"));
        d.drag({100, 100}, {300, 100});
        const QImage image = d.copied();
        // Sides of 15 points at 30 degrees: 7.5 to either side, 13 behind the tip.
        for (int y = 95; y < 105; ++y)
            QCOMPARE(image.pixel(289, y), Ink::red);
        for (int y : {90, 109})
            QCOMPARE(image.pixel(289, y), d.untouched().pixel(289, y));
        QCOMPARE(image.pixel(280, 104), d.untouched().pixel(280, 104));
        QCOMPARE(image.pixel(280, 100), Ink::red);
    }

    void takeTheColourOfTheSwatch()
    {
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("l"));
        const QRgb colors[] = {0xffff3b30, 0xffff9500, 0xffffcc00, 0xff34c759,
                               0xff007aff, 0xffaf52de, 0xffffffff, 0xff000000};
        for (int i = 0; i < 8; ++i) {
            d.clickButton(Drawing::colorButton);
            d.tovek->hand().click(d.swatch(i));
            d.drag({100, 40 + 30 * i}, {200, 40 + 30 * i});
        }
        const QImage image = d.copied();
        for (int i = 0; i < 8; ++i)
            QCOMPARE(image.pixel(150, 40 + 30 * i), colors[i]);
    }

    void takeAnotherColourWithShift()
    {
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("l"));
        d.drag({100, 100}, {200, 100});
        d.click({150, 100});
        d.clickButton(Drawing::colorButton);
        QVERIFY(d.hold("Shift_L"));
        d.tovek->hand().click(d.swatch(3));
        QVERIFY(d.letGo("Shift_L"));
        d.drag({100, 160}, {200, 160});
        const QImage image = d.copied();
        QCOMPARE(image.pixel(150, 100), Ink::green);
        QCOMPARE(image.pixel(150, 160), Ink::red);
    }

    void keepTheirColourWithoutShift()
    {
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("l"));
        d.drag({100, 100}, {200, 100});
        d.click({150, 100});
        d.clickButton(Drawing::colorButton);
        d.tovek->hand().click(d.swatch(3));
        d.drag({100, 160}, {200, 160});
        const QImage image = d.copied();
        QCOMPARE(image.pixel(150, 100), Ink::red);
        QCOMPARE(image.pixel(150, 160), Ink::green);
    }

    void goWithTheirKey_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::newRow("Backspace") << QByteArray("BackSpace");
        QTest::newRow("Delete") << QByteArray("Delete");
    }
    void goWithTheirKey()
    {
        QFETCH(QByteArray, key);
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("r"));
        d.drag({100, 80}, {300, 200});
        d.drag({350, 80}, {450, 200});
        // Nothing is selected yet.
        QVERIFY(d.tap(key.constData()));
        d.click({200, 80});
        QVERIFY(d.tap(key.constData()));
        const QRect left = boxOf(d.copied(), Ink::red);
        QVERIFY2(isNear(left, QRect(349, 79, 103, 123)), qPrintable(toText(left)));
    }

    void comeBackWithUndo_data()
    {
        QTest::addColumn<QByteArray>("redo");
        QTest::newRow("Ctrl+Y") << QByteArray("Control_L+y");
        QTest::newRow("Ctrl+Shift+Z") << QByteArray("Control_L+Shift_L+z");
        QTest::newRow("Super+Shift+Z") << QByteArray("Super_L+Shift_L+z");
    }
    void comeBackWithUndo()
    {
        QFETCH(QByteArray, redo);
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("r"));
        d.drag({100, 80}, {300, 200});
        d.drag({350, 80}, {450, 200});
        QVERIFY(d.tap("Control_L+z"));
        QVERIFY(d.tap("Control_L+z"));
        QVERIFY(d.tap("Control_L+z")); // nothing is left to undo
        QVERIFY(d.tap(redo.constData()));
        const QRect box = boxOf(d.copied(), Ink::red);
        QVERIFY2(isNear(box, QRect(99, 79, 203, 123)), qPrintable(toText(box)));
    }

    void undoToNothing()
    {
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("l"));
        d.drag({100, 80}, {300, 200});
        QVERIFY(d.tap("Control_L+z"));
        QCOMPARE(differentPixels(d.copied(), d.untouched()), 0);
    }

    void moveByTheirCornersAndEnds_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QPoint>("grip");
        QTest::addColumn<QPoint>("to");
        QTest::addColumn<QRect>("box");
        const QByteArray rectangle("r");
        QTest::newRow("bottom right")
            << rectangle << QPoint(300, 200) << QPoint(350, 260) << QRect(99, 79, 253, 183);
        QTest::newRow("top left") << rectangle << QPoint(100, 80) << QPoint(60, 50)
                                  << QRect(59, 49, 243, 153);
        QTest::newRow("top right, across")
            << rectangle << QPoint(300, 80) << QPoint(50, 250) << QRect(49, 199, 53, 53);
        QTest::newRow("a line's start")
            << QByteArray("l") << QPoint(100, 80) << QPoint(100, 200) << QRect(99, 199, 203, 3);
        QTest::newRow("an arrow's end")
            << QByteArray("a") << QPoint(300, 200) << QPoint(400, 80) << QRect(99, 73, 301, 15);
        QTest::newRow("out of the selection")
            << rectangle << QPoint(300, 200) << QPoint(900, 700) << QRect(99, 79, 401, 271);
    }
    void moveByTheirCornersAndEnds()
    {
        QFETCH(QByteArray, key);
        QFETCH(QPoint, grip);
        QFETCH(QPoint, to);
        QFETCH(QRect, box);
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap(key.constData()));
        d.drag({100, 80}, {300, 200});
        QVERIFY(d.tap("v"));
        d.drag(grip, to);
        const QRect actual = boxOf(d.copied(), Ink::red);
        QVERIFY2(isNear(actual, box), qPrintable(toText(actual)));
    }

    void moveByTheirMiddleAndByKeys()
    {
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("r"));
        d.drag({100, 80}, {300, 200});
        d.drag({200, 80}, {230, 100}); // by its upper edge
        for (const char *key : {"Right", "Right", "Down", "Shift_L+Left", "Shift_L+Up", "Up"})
            QVERIFY(d.tap(key));
        const QRect box = boxOf(d.copied(), Ink::red);
        QCOMPARE(box.topLeft(), QPoint(99 + 30 + 2 - 10, 79 + 20 + 1 - 11));
        QVERIFY2(isNear(box, QRect(121, 89, 203, 123)), qPrintable(toText(box)));
    }

    void areSavedAsTheyAreCopied()
    {
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("a"));
        d.drag({100, 80}, {300, 200});
        QVERIFY(d.tap("Control_L+s"));
        const QImage saved = QImage::fromData(d.saved());
        QVERIFY(d.isClosed());
        QVERIFY2(d.again(), qPrintable(d.error));
        QVERIFY(d.tap("a"));
        d.drag({100, 80}, {300, 200});
        QCOMPARE(differentPixels(d.copied(), saved), 0);
    }

    void endAtTheSelectionsEdge()
    {
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("l"));
        d.drag({100, 100}, {560, 100});
        QVERIFY(isNear(boxOf(d.copied(), Ink::red), QRect(99, 99, 401, 3)));
    }
};

QTEST_GUILESS_MAIN(TestAnnotations)
#include "tst_Annotations.moc"
