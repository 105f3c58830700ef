// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/StrokedSegment.h"

#include <QPainter>
#include <QRegularExpression>
#include <QTest>

#include <cmath>

using namespace tovek;

namespace {

const QSize paper(90, 70);

/// How far inside the segment's edge a place is.
double depthOf(const StrokedSegment &segment, QPointF at)
{
    const QPointF way = segment.to - segment.from;
    const double square = QPointF::dotProduct(way, way);
    const double t = square > 0 ? QPointF::dotProduct(at - segment.from, way) / square : 0;
    const QPointF beside = at - segment.from - std::clamp(t, 0.0, 1.0) * way;
    return segment.width / 2 - std::hypot(beside.x(), beside.y());
}

/// The part of a pixel that the segment covers, by counting.
double countedCoverage(const StrokedSegment &segment, QPoint pixel)
{
    const double depth = depthOf(segment, QPointF(pixel) + QPointF(0.5, 0.5));
    if (std::abs(depth) > 1)
        return depth > 0 ? 1 : 0;
    constexpr int fine = 32;
    int hits = 0;
    for (int y = 0; y < fine; ++y) {
        for (int x = 0; x < fine; ++x)
            hits +=
                depthOf(segment, QPointF(pixel) + QPointF((x + 0.5) / fine, (y + 0.5) / fine)) >= 0;
    }
    return double(hits) / (fine * fine);
}

QImage painted(const StrokedSegment &segment, const QColor &color, QRect within, QSize size = paper)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paintSegment(painter, segment, color, within);
    return image;
}

} // namespace

class TestStrokedSegment : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void coversEachPixelByItsShare_data()
    {
        QTest::addColumn<StrokedSegment>("segment");
        const auto row = [](const char *name, QPointF from, QPointF to, double width) {
            QTest::newRow(name) << StrokedSegment{from, to, width};
        };
        row("level on a pixel's middle", {10, 20.5}, {80, 20.5}, 3);
        row("level between pixels", {10, 20}, {80, 20}, 3);
        row("level at a third", {10.3, 20.3}, {79.7, 20.3}, 3);
        row("upright", {30.25, 5}, {30.25, 60}, 4.5);
        row("nearly level", {5, 20}, {85, 21.7}, 3);
        row("nearly upright", {40, 66}, {41.3, 4}, 3);
        row("slanted", {8, 9}, {83, 62}, 3);
        row("slanted the other way", {80, 6}, {12, 63}, 6);
        row("at 45 degrees", {10, 10}, {60, 60}, 4.5);
        row("thin", {10, 12}, {75, 44}, 0.6);
        row("thick", {30, 25}, {60, 45}, 30);
        row("short", {40, 30}, {40.8, 30.4}, 3);
        row("a point", {40.2, 30.7}, {40.2, 30.7}, 6);
    }
    void coversEachPixelByItsShare()
    {
        QFETCH(StrokedSegment, segment);
        for (const bool isReversed : {false, true}) {
            const StrokedSegment one =
                isReversed ? StrokedSegment{segment.to, segment.from, segment.width} : segment;
            const QImage image = painted(one, Qt::black, QRect({}, paper));
            for (int y = 0; y < paper.height(); ++y) {
                for (int x = 0; x < paper.width(); ++x) {
                    const double exact = 255 * countedCoverage(one, {x, y});
                    // Counting is out by as much as 1/32 where an edge is level.
                    const double apart = std::abs(qAlpha(image.pixel(x, y)) - exact);
                    QVERIFY2(apart <= 9,
                             qPrintable(QStringLiteral("(%1, %2): %3, not %4")
                                            .arg(x)
                                            .arg(y)
                                            .arg(qAlpha(image.pixel(x, y)))
                                            .arg(exact)));
                }
            }
        }
    }

    void isExactAlongTheAxes()
    {
        const QImage image = painted({{10, 20.3}, {80, 20.3}, 3}, Qt::black, QRect({}, paper));
        // From 18.8 to 21.8.
        const int shares[] = {0, 51, 255, 255, 204, 0};
        for (int i = 0; i < 6; ++i)
            QCOMPARE(qAlpha(image.pixel(45, 17 + i)), shares[i]);
    }

    void hasNoSeams_data()
    {
        QTest::addColumn<QPointF>("to");
        QTest::newRow("level") << QPointF(790, 10);
        QTest::newRow("shallow") << QPointF(790, 90);
        QTest::newRow("steep") << QPointF(60, 590);
        QTest::newRow("at 45 degrees") << QPointF(590, 590);
    }
    void hasNoSeams()
    {
        QFETCH(QPointF, to);
        // A seam would be darker or lighter than the half of the colour.
        const QSize large(800, 600);
        const StrokedSegment segment{{10, 10}, to, 9};
        const QImage image = painted(segment, QColor(200, 0, 0, 128), QRect({}, large), large);
        const QPointF way = to - segment.from;
        for (double t = 0.01; t < 0.99; t += 0.001) {
            const QPoint at = (segment.from + t * way - QPointF(0.5, 0.5)).toPoint();
            QCOMPARE(qAlpha(image.pixel(at)), 128);
        }
    }

    void staysWithinWhatIsAskedFor_data()
    {
        QTest::addColumn<QRect>("within");
        QTest::newRow("a part of the middle") << QRect(30, 20, 25, 13);
        QTest::newRow("a single row") << QRect(0, 33, 90, 1);
        QTest::newRow("a corner that the stroke misses") << QRect(70, 0, 20, 20);
        QTest::newRow("nothing") << QRect(20, 20, 0, 0);
        QTest::newRow("beside the picture") << QRect(200, 200, 50, 50);
    }
    void staysWithinWhatIsAskedFor()
    {
        QFETCH(QRect, within);
        const StrokedSegment segment{{8, 9}, {83, 62}, 5};
        const QImage whole = painted(segment, Qt::red, QRect({}, paper));
        const QImage part = painted(segment, Qt::red, within);
        QImage expected(paper, QImage::Format_ARGB32_Premultiplied);
        expected.fill(Qt::transparent);
        for (int y = 0; y < paper.height(); ++y) {
            for (int x = 0; x < paper.width(); ++x) {
                if (within.contains(x, y))
                    expected.setPixel(x, y, whole.pixel(x, y));
            }
        }
        QCOMPARE(part, expected);
    }

    void keepsToThePaintersClip()
    {
        QImage image(paper, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        {
            QPainter painter(&image);
            painter.setClipRect(QRect(20, 0, 30, 70));
            painter.scale(7, 7); // of no account for the segment
            paintSegment(painter, {{5, 30}, {85, 30}, 4}, Qt::red, image.rect());
            QCOMPARE(painter.transform(), QTransform::fromScale(7, 7));
        }
        QCOMPARE(qAlpha(image.pixel(19, 30)), 0);
        QCOMPARE(image.pixelColor(20, 30), QColor(255, 0, 0));
        QCOMPARE(image.pixelColor(49, 30), QColor(255, 0, 0));
        QCOMPARE(qAlpha(image.pixel(50, 30)), 0);
    }
};

QTEST_APPLESS_MAIN(TestStrokedSegment)
#include "tst_StrokedSegment.moc"
