// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "Session.h"

#include <QTest>

#include <cstdlib>

using namespace tovek;

namespace {

constexpr QPoint from{200, 150};
constexpr QPoint to{700, 500};

bool isRed(QRgb pixel)
{
    return std::abs(qRed(pixel) - 0xff) < 8 && std::abs(qGreen(pixel) - 0x3b) < 8
        && std::abs(qBlue(pixel) - 0x30) < 8;
}

/// The box around the pixels of the drawing colour, which the picture below does not hold.
QRect redBox(const QImage &image)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (isRed(image.pixel(x, y)))
                box |= QRect(x, y, 1, 1);
        }
    }
    return box;
}

bool isNear(const QRect &actual, const QRect &expected)
{
    const auto near = [](int a, int b) { return std::abs(a - b) <= 2; };
    return near(actual.left(), expected.left()) && near(actual.top(), expected.top())
        && near(actual.right(), expected.right()) && near(actual.bottom(), expected.bottom());
}

/// A selection on a frozen screen, ready to be drawn on.
struct Drawing : Session
{
    explicit Drawing(double screenScale = 1) : Session({}, screenScale) { }
    bool begin()
    {
        if (!start() || !open())
            return false;
        select(from, to);
        // The toolbar tells that the selection is accepted: it paints over the dimmed screen.
        return waitUntil([&] { return !tovek->eye().overlays("tovek").isEmpty(); });
    }
    void drag(QPoint a, QPoint b) { tovek->hand().drag(from + a, from + b); }
    QImage copied() { return tap("Return") ? QImage::fromData(pasted()) : QImage(); }
};

} // namespace

class TestAnnotations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const QString missing = TestDesktop::missing();
        if (!missing.isEmpty())
            QSKIP(qPrintable(missing));
    }
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
        const QRect actual = redBox(image);
        QVERIFY2(isNear(actual, box),
                 qPrintable(QStringLiteral("%1,%2 %3x%4")
                                .arg(actual.x())
                                .arg(actual.y())
                                .arg(actual.width())
                                .arg(actual.height())));
        // Nothing else is changed.
        QImage rest = image;
        const QImage expected = d.expected(from, to);
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
        d.tovek->hand().click(from + QPoint(200, 100));
        const QImage image = d.copied();
        // A handle is a square of 8 points at the line's end.
        QVERIFY(isNear(redBox(image), QRect(99, 99, 203, 3)));
        QCOMPARE(image.pixel(100, 104), d.expected(from, to).pixel(100, 104));
    }

    void goWithBackspace()
    {
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("r"));
        d.drag({100, 80}, {300, 200});
        d.tovek->hand().click(from + QPoint(200, 80));
        QVERIFY(d.tap("BackSpace"));
        QCOMPARE(differentPixels(d.copied(), d.expected(from, to)), 0);
    }

    void comeBackWithUndo()
    {
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("r"));
        d.drag({100, 80}, {300, 200});
        QVERIFY(d.tap("Control_L+z"));
        QVERIFY(d.tap("Control_L+y"));
        QVERIFY(isNear(redBox(d.copied()), QRect(99, 79, 203, 123)));
    }

    void moveByTheirCorner()
    {
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("r"));
        d.drag({100, 80}, {300, 200});
        d.drag({300, 200}, {350, 260});
        QVERIFY(isNear(redBox(d.copied()), QRect(99, 79, 253, 183)));
    }

    void endAtTheSelectionsEdge()
    {
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("l"));
        d.drag({100, 100}, {560, 100});
        QVERIFY(isNear(redBox(d.copied()), QRect(99, 99, 401, 3)));
    }

    void holdWhatWasTyped()
    {
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("t"));
        d.tovek->hand().click(from + QPoint(100, 100));
        for (const char *key : {"h", "i", "Shift_L+1"})
            QVERIFY(d.tap(key));
        QVERIFY(d.tap("Escape")); // leaves the box, not the capture
        const QRect box = redBox(d.copied());
        QVERIFY(box.left() >= 100 && box.left() < 106);
        QVERIFY(box.top() >= 100 && box.bottom() < 126);
        QVERIFY(box.width() > 8 && box.width() < 40);
    }

    void leaveTheSelectionAloneUnderTheToolbar()
    {
        Drawing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        // Between two buttons of the toolbar, which hangs centred below the selection.
        d.tovek->hand().click({(from.x() + to.x()) / 2, to.y() + 8 + 26});
        QCOMPARE(differentPixels(d.copied(), d.expected(from, to)), 0);
    }
};

QTEST_GUILESS_MAIN(TestAnnotations)
#include "tst_Annotations.moc"
