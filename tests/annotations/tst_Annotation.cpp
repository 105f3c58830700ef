// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "annotations/Annotation.h"

#include <QFont>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QTest>

#include <cmath>

using namespace tovek;

namespace {

template <typename Kind>
Annotation shape(Point start, Point end)
{
    Kind kind;
    kind.startPoint = start;
    kind.endPoint = end;
    kind.color = Qt::red;
    return kind;
}

TextAnnotation label(const QString &text, Point at)
{
    TextAnnotation annotation;
    annotation.startPoint = annotation.endPoint = at;
    annotation.text = text;
    return annotation;
}

} // namespace

class TestAnnotation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QGuiApplication::setFont(QFont(QStringLiteral("DejaVu Sans"))); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void measuresTheDistanceToASegment_data()
    {
        QTest::addColumn<Point>("point");
        QTest::addColumn<Point>("from");
        QTest::addColumn<Point>("to");
        QTest::addColumn<double>("expected");
        QTest::newRow("beside the middle") << Point{5, 3} << Point{0, 0} << Point{10, 0} << 3.0;
        QTest::newRow("on it") << Point{5, 5} << Point{0, 0} << Point{10, 10} << 0.0;
        QTest::newRow("beside its start") << Point{0, -4} << Point{0, 0} << Point{10, 0} << 4.0;
        QTest::newRow("before its start") << Point{-3, 4} << Point{0, 0} << Point{10, 0} << 5.0;
        QTest::newRow("behind its end") << Point{13, 4} << Point{0, 0} << Point{10, 0} << 5.0;
        QTest::newRow("no extent") << Point{3, 4} << Point{0, 0} << Point{0, 0} << 5.0;
    }
    void measuresTheDistanceToASegment()
    {
        QFETCH(Point, point);
        QFETCH(Point, from);
        QFETCH(Point, to);
        QFETCH(double, expected);
        QCOMPARE(distanceToSegment(point, from, to), expected);
        QCOMPARE(distanceToSegment(point, to, from), expected);
    }

    void hitsTheShapeWithinTheTolerance_data()
    {
        QTest::addColumn<Point>("point");
        QTest::addColumn<bool>("hitsLine");
        QTest::addColumn<bool>("hitsRectangle");
        // The line runs from (100, 200) to (300, 200); the rectangle spans (100, 100), (300, 200).
        QTest::newRow("on the top edge") << Point{200, 200} << true << true;
        QTest::newRow("9 above it") << Point{200, 209} << true << true;
        QTest::newRow("10 above it") << Point{200, 210} << true << true;
        QTest::newRow("11 above it") << Point{200, 211} << false << false;
        QTest::newRow("9 below it") << Point{200, 191} << true << true;
        QTest::newRow("11 below it") << Point{200, 189} << false << false;
        QTest::newRow("10 left of the end") << Point{90, 200} << true << true;
        QTest::newRow("10.5 left of the end") << Point{89.5, 200} << false << false;
        QTest::newRow("within 10 of the corner") << Point{306, 208} << true << true;
        QTest::newRow("just beyond the corner") << Point{308, 207} << false << false;
        QTest::newRow("centre") << Point{200, 150} << false << false;
        QTest::newRow("bottom edge") << Point{200, 91} << false << true;
        QTest::newRow("left edge") << Point{109, 150} << false << true;
        QTest::newRow("right edge") << Point{310, 150} << false << true;
    }
    void hitsTheShapeWithinTheTolerance()
    {
        QFETCH(Point, point);
        QFETCH(bool, hitsLine);
        QFETCH(bool, hitsRectangle);
        QCOMPARE(hitTest(shape<LineAnnotation>({100, 200}, {300, 200}), point, 10), hitsLine);
        QCOMPARE(hitTest(shape<ArrowAnnotation>({300, 200}, {100, 200}), point, 10), hitsLine);
        const Point corners[][2] = {{{100, 100}, {300, 200}},
                                    {{300, 200}, {100, 100}},
                                    {{100, 200}, {300, 100}},
                                    {{300, 100}, {100, 200}}};
        for (const auto &[start, end] : corners)
            QCOMPARE(hitTest(shape<RectangleAnnotation>(start, end), point, 10), hitsRectangle);
    }

    void doesNotHitTheArrowsHeadBesideItsShaft()
    {
        ArrowAnnotation arrow = std::get<ArrowAnnotation>(shape<ArrowAnnotation>({0, 0}, {100, 0}));
        arrow.arrowHeadLength = 60;
        QVERIFY(!hitTest(arrow, {60, 15}, 10));
    }

    void hitsADegenerateSegmentAroundItsPoint()
    {
        const Annotation dot = shape<LineAnnotation>({50, 50}, {50, 50});
        QVERIFY(isDegenerate(dot));
        QVERIFY(hitTest(dot, {56, 58}, 10));
        QVERIFY(!hitTest(dot, {57, 58}, 10));
    }

    void hitsATextInItsGrownBox()
    {
        const TextAnnotation text = label(QStringLiteral("Hello"), {100, 100});
        const Rect box = textBox(text);
        QCOMPARE(box.minX(), 100.0);
        QCOMPARE(box.maxY(), 100.0);
        QVERIFY(box.width > 30 && box.width < 60);
        QVERIFY(box.height > 15 && box.height < 24);
        QVERIFY(hitTest(text, {box.midX(), box.midY()}, 10));
        QVERIFY(hitTest(text, {box.minX() - 10, box.maxY() + 10}, 10));
        QVERIFY(hitTest(text, {box.maxX() + 10, box.minY() - 10}, 10));
        QVERIFY(!hitTest(text, {box.minX() - 10.5, box.midY()}, 10));
        QVERIFY(!hitTest(text, {box.maxX() + 10.5, box.midY()}, 10));
        QVERIFY(!hitTest(text, {box.midX(), box.minY() - 10.5}, 10));
        QVERIFY(!hitTest(text, {box.midX(), box.maxY() + 10.5}, 10));
    }

    void neverHitsAnEmptyText()
    {
        const Annotation empty = label({}, {100, 100});
        QVERIFY(isDegenerate(empty));
        QVERIFY(!hitTest(empty, {100, 100}, 10));
    }

    void growsTheTextsBoxByLines()
    {
        const Rect one = textBox(label(QStringLiteral("one"), {}));
        const Rect two = textBox(label(QStringLiteral("one\ntwo and more"), {}));
        QCOMPARE(two.height, 2 * one.height);
        QVERIFY(two.width > one.width);
        const Rect gap = textBox(label(QStringLiteral("one\n\none"), {}));
        QCOMPARE(gap.height, 3 * one.height);
        QCOMPARE(gap.width, one.width);
    }

    void movesBothPointsOfEveryKind()
    {
        const Annotation kinds[] = {
            shape<ArrowAnnotation>({1, 2}, {3, 4}), shape<LineAnnotation>({1, 2}, {3, 4}),
            shape<RectangleAnnotation>({1, 2}, {3, 4}), shape<TextAnnotation>({1, 2}, {3, 4})};
        for (Annotation annotation : kinds) {
            const Annotation before = annotation;
            moveBy(annotation, 0, 0);
            QVERIFY(annotation == before);
            moveBy(annotation, 10, -20);
            QVERIFY((fieldsOf(annotation).startPoint == Point{11, -18}));
            QVERIFY((fieldsOf(annotation).endPoint == Point{13, -16}));
        }
    }

    void putsHandlesOnEndsAndCorners()
    {
        using Points = std::vector<Point>;
        QVERIFY((handlePoints(shape<LineAnnotation>({9, 8}, {1, 2})) == Points{{9, 8}, {1, 2}}));
        QVERIFY((handlePoints(shape<ArrowAnnotation>({9, 8}, {1, 2})) == Points{{9, 8}, {1, 2}}));
        QVERIFY((handlePoints(shape<RectangleAnnotation>({9, 2}, {1, 8}))
                 == Points{{1, 2}, {9, 2}, {1, 8}, {9, 8}}));
        const TextAnnotation text = label(QStringLiteral("x"), {10, 50});
        const Rect box = textBox(text);
        QVERIFY(
            (handlePoints(text)
             == Points{{10, box.minY()}, {box.maxX(), box.minY()}, {10, 50}, {box.maxX(), 50}}));
    }

    void makesEveryAnnotationAnIdentityOfItsOwn()
    {
        QVERIFY(LineAnnotation().id != LineAnnotation().id);
        const LineAnnotation one;
        const LineAnnotation copy = one;
        QVERIFY(copy.id == one.id);
    }

    void startsWithTheAgreedMeasures()
    {
        const ArrowAnnotation arrow;
        QCOMPARE(arrow.lineWidth, 3.0);
        QCOMPARE(arrow.arrowHeadLength, 15.0);
        QCOMPARE(arrow.arrowHeadAngle, M_PI / 6);
        QCOMPARE(TextAnnotation().fontSize, 16.0);
        QVERIFY(!arrow.isSelected);
    }
};

QTEST_MAIN(TestAnnotation)
#include "tst_Annotation.moc"
