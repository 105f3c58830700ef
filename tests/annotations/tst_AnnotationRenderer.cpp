// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "annotations/AnnotationDrawing.h"
#include "annotations/AnnotationRenderer.h"
#include "foundation/DrawingContext.h"
#include "foundation/SystemColors.h"

#include <QDir>
#include <QFont>
#include <QGuiApplication>
#include <QPainter>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

/// A screen on which every pixel differs from its neighbours.
Image screenOf(Size points, double scale)
{
    QImage bitmap(qRound(points.width * scale), qRound(points.height * scale),
                  QImage::Format_RGB32);
    for (int y = 0; y < bitmap.height(); ++y) {
        for (int x = 0; x < bitmap.width(); ++x)
            bitmap.setPixel(x, y, qRgb(x & 255, y & 255, (x * 7 + y * 13) & 255));
    }
    return {bitmap, points};
}

Image paper(Size points, double scale)
{
    Image image = screenOf(points, scale);
    image.bitmap.fill(qRgb(238, 238, 240));
    return image;
}

template <typename Kind>
Kind shape(Point start, Point end, QColor color = SystemColors::red)
{
    Kind kind;
    kind.startPoint = start;
    kind.endPoint = end;
    kind.color = color;
    return kind;
}

TextAnnotation label(const QString &text, Point at)
{
    TextAnnotation annotation = shape<TextAnnotation>(at, at, SystemColors::purple);
    annotation.text = text;
    return annotation;
}

QImage drawn(const Annotation &annotation, double scale)
{
    QImage image = paper({120, 80}, scale).bitmap;
    QPainter painter(&image);
    DrawingContext context(painter, {{120, 80}, scale});
    draw(annotation, context);
    return image;
}

bool isFlat(const QImage &image, int x, int y)
{
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const QPoint near(std::clamp(x + dx, 0, image.width() - 1),
                              std::clamp(y + dy, 0, image.height() - 1));
            if (image.pixel(near) != image.pixel(x, y))
                return false;
        }
    }
    return true;
}

/// The first pixel in which the pictures differ: at all in flat places, by more than a shade of
/// anti-aliasing at edges.
QString difference(const QImage &actual, const QImage &golden)
{
    if (actual.size() != golden.size())
        return QStringLiteral("other size");
    for (int y = 0; y < golden.height(); ++y) {
        for (int x = 0; x < golden.width(); ++x) {
            const QColor a(actual.pixel(x, y));
            const QColor g(golden.pixel(x, y));
            const int apart =
                std::max({std::abs(a.red() - g.red()), std::abs(a.green() - g.green()),
                          std::abs(a.blue() - g.blue())});
            if (apart > (isFlat(golden, x, y) ? 0 : 24))
                return QStringLiteral("at (%1, %2) by %3").arg(x).arg(y).arg(apart);
        }
    }
    return {};
}

QString goldenFolder()
{
    return qEnvironmentVariable("TOVEK_SOURCE_DIR") + "/tests/annotations/golden";
}

} // namespace

class TestAnnotationRenderer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QGuiApplication::setFont(QFont(QStringLiteral("DejaVu Sans"))); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void drawsEachKindLikeItsGoldenPicture_data()
    {
        QTest::addColumn<Annotation>("annotation");
        QTest::addColumn<double>("scale");
        RectangleAnnotation selected = shape<RectangleAnnotation>({100, 20}, {20, 60});
        selected.isSelected = true;
        TextAnnotation selectedText =
            label(QString::fromUtf8("Tr\u00fcb\n\u05e9\u05dc\u05d5\u05dd ok"), {30, 60});
        selectedText.isSelected = true;
        LineAnnotation selectedLine =
            shape<LineAnnotation>({15, 65}, {105, 15}, SystemColors::green);
        selectedLine.isSelected = true;
        ArrowAnnotation selectedArrow = shape<ArrowAnnotation>({105, 20}, {20, 60});
        selectedArrow.isSelected = true;
        const std::pair<const char *, Annotation> kinds[] = {
            {"arrow-selected", selectedArrow},
            // Shorter than half its head, so that the shaft begins on the other side of its start.
            {"arrow-short", shape<ArrowAnnotation>({60, 40}, {64, 43}, SystemColors::purple)},
            {"arrow", shape<ArrowAnnotation>({15, 15}, {105, 65})},
            {"arrow-down", shape<ArrowAnnotation>({60, 70}, {60, 10}, SystemColors::blue)},
            {"line", shape<LineAnnotation>({15, 65}, {105, 15}, SystemColors::green)},
            {"line-selected", selectedLine},
            {"rectangle", shape<RectangleAnnotation>({20, 60}, {100, 20}, SystemColors::orange)},
            {"rectangle-selected", selected},
            {"text", label(QStringLiteral("Tovek, 16 pt"), {8, 50})},
            {"text-selected", selectedText},
        };
        for (const auto &[name, annotation] : kinds) {
            for (double scale : {1.0, 1.5, 2.0})
                QTest::newRow(qPrintable(QStringLiteral("%1@%2").arg(name).arg(scale)))
                    << annotation << scale;
        }
    }
    void drawsEachKindLikeItsGoldenPicture()
    {
        QFETCH(Annotation, annotation);
        QFETCH(double, scale);
        const QImage actual = drawn(annotation, scale);
        const QString name = QString::fromUtf8(QTest::currentDataTag()) + ".png";
        const QImage golden(goldenFolder() + "/" + name);
        const QString apart = difference(actual, golden.convertToFormat(actual.format()));
        if (!apart.isEmpty()) {
            const QString kept = QDir::tempPath() + "/tovek-golden-" + name;
            actual.save(kept);
            QFAIL(qPrintable(QStringLiteral("%1 differs %2; see %3").arg(name, apart, kept)));
        }
    }

    void drawsNothingForADegenerateShape()
    {
        LineAnnotation line = shape<LineAnnotation>({60, 40}, {60, 40});
        ArrowAnnotation arrow = shape<ArrowAnnotation>({60, 40}, {60, 40});
        RectangleAnnotation rectangle = shape<RectangleAnnotation>({60, 40}, {60, 40});
        TextAnnotation text = label({}, {60, 40});
        const QImage empty = paper({120, 80}, 2).bitmap;
        for (bool isSelected : {false, true}) {
            line.isSelected = arrow.isSelected = rectangle.isSelected = text.isSelected =
                isSelected;
            for (const Annotation &annotation :
                 {Annotation(line), Annotation(arrow), Annotation(rectangle), Annotation(text)})
                QCOMPARE(drawn(annotation, 2), empty);
        }
    }

    void drawsAFlatRectangleAsASegment()
    {
        QCOMPARE(drawn(shape<RectangleAnnotation>({20, 40}, {100, 40}), 2),
                 drawn(shape<LineAnnotation>({20, 40}, {100, 40}), 2));
    }

    void cutsTheExactPixelsOfAnUntouchedSelection_data()
    {
        QTest::addColumn<double>("scale");
        QTest::addColumn<Rect>("selection");
        QTest::addColumn<QRect>("pixels");
        QTest::newRow("scale 1") << 1.0 << Rect{10, 20, 30, 40} << QRect(10, 140, 30, 40);
        QTest::newRow("scale 2") << 2.0 << Rect{10, 20, 100, 50} << QRect(20, 260, 200, 100);
        QTest::newRow("scale 1.5, edges on pixels")
            << 1.5 << Rect{10 / 1.5, 33 / 1.5, 61 / 1.5, 77 / 1.5} << QRect(10, 190, 61, 77);
        QTest::newRow("whole screen") << 1.25 << Rect{0, 0, 300, 200} << QRect(0, 0, 375, 250);
        QTest::newRow("part of a pixel is cut off")
            << 1.0 << Rect{10, 20, 30.9, 40} << QRect(10, 140, 30, 40);
    }
    void cutsTheExactPixelsOfAnUntouchedSelection()
    {
        QFETCH(double, scale);
        QFETCH(Rect, selection);
        QFETCH(QRect, pixels);
        const Image screen = screenOf({300, 200}, scale);
        const std::optional<Image> result = AnnotationRenderer::render({}, screen, selection);
        QVERIFY(result);
        QVERIFY(result->size == selection.size());
        QCOMPARE(result->bitmap.format(), QImage::Format_RGB32);
        QCOMPARE(result->bitmap, screen.bitmap.copy(pixels));
    }

    void leavesAlonePixelsThatNothingTouches()
    {
        const Image screen = screenOf({300, 200}, 1.5);
        const Rect selection{40, 40, 200, 120};
        const auto plain = AnnotationRenderer::render({}, screen, selection);
        const auto annotated = AnnotationRenderer::render(
            {shape<RectangleAnnotation>({80, 80}, {160, 120})}, screen, selection);
        QVERIFY(plain && annotated);
        QVERIFY(annotated->bitmap != plain->bitmap);
        const ViewSpace space{{200, 120}, 1.5};
        const QRect touched = space.pixelsFromRect({38.5, 38.5, 83, 43}).toAlignedRect();
        const QRect inside = space.pixelsFromRect({41.5, 41.5, 77, 37}).toAlignedRect();
        for (int y = 0; y < plain->bitmap.height(); ++y) {
            for (int x = 0; x < plain->bitmap.width(); ++x) {
                if (!touched.contains(x, y) || inside.adjusted(1, 1, -1, -1).contains(x, y))
                    QCOMPARE(annotated->bitmap.pixel(x, y), plain->bitmap.pixel(x, y));
            }
        }
        QCOMPARE(screen.bitmap, screenOf({300, 200}, 1.5).bitmap);
    }

    void clipsAtTheBitmapsEdges()
    {
        const Image screen = paper({300, 200}, 2);
        const Rect selection{100, 50, 100, 100};
        const auto result = AnnotationRenderer::render(
            {shape<LineAnnotation>({0, 100}, {300, 100})}, screen, selection);
        QVERIFY(result);
        QCOMPARE(result->bitmap.size(), QSize(200, 200));
        const QColor red = SystemColors::red;
        // Three points wide around the middle: pixel rows 97 to 102, edge to edge.
        for (int x : {0, 1, 100, 198, 199}) {
            QCOMPARE(result->bitmap.pixelColor(x, 96), QColor(238, 238, 240));
            QCOMPARE(result->bitmap.pixelColor(x, 97), red);
            QCOMPARE(result->bitmap.pixelColor(x, 102), red);
            QCOMPARE(result->bitmap.pixelColor(x, 103), QColor(238, 238, 240));
        }
    }

    void cutsThroughEveryKind_data()
    {
        QTest::addColumn<Annotation>("annotation");
        QTest::addColumn<double>("scale");
        // Each reaches over an edge of the selection.
        const std::pair<const char *, Annotation> kinds[] = {
            {"arrow", shape<ArrowAnnotation>({90, 40}, {204, 157})},
            {"line", shape<LineAnnotation>({60, 30}, {260, 163})},
            {"rectangle", shape<RectangleAnnotation>({60, 80}, {160, 180})},
            {"text", label(QStringLiteral("Cut through\nby the edge"), {70, 70})},
            {"beside it", shape<LineAnnotation>({10, 10}, {40, 190})},
        };
        for (const auto &[name, annotation] : kinds) {
            for (double scale : {1.0, 1.5, 2.0})
                QTest::addRow("%s at %.1f", name, scale) << annotation << scale;
        }
    }
    void cutsThroughEveryKind()
    {
        QFETCH(Annotation, annotation);
        QFETCH(double, scale);
        const Image screen = screenOf({300, 200}, scale);
        const Rect selection{100, 50, 100, 100};
        const auto part = AnnotationRenderer::render({annotation}, screen, selection);
        const auto whole = AnnotationRenderer::render({annotation}, screen, {0, 0, 300, 200});
        QVERIFY(part && whole);
        const ViewSpace space{{300, 200}, scale};
        const QRect pixels = space.pixelsFromRect(selection).toRect();
        QCOMPARE(part->bitmap, whole->bitmap.copy(pixels));
    }

    void drawsLaterAnnotationsOnTop()
    {
        const auto result = AnnotationRenderer::render(
            {shape<LineAnnotation>({0, 50}, {100, 50}, SystemColors::red),
             shape<LineAnnotation>({50, 0}, {50, 100}, SystemColors::blue)},
            paper({100, 100}, 1), {0, 0, 100, 100});
        QVERIFY(result);
        QCOMPARE(result->bitmap.pixelColor(50, 50), SystemColors::blue);
        QCOMPARE(result->bitmap.pixelColor(20, 50), SystemColors::red);
    }

    void exportsASelectedAnnotationWithoutHandles()
    {
        RectangleAnnotation rectangle = shape<RectangleAnnotation>({20, 20}, {80, 60});
        const Image screen = screenOf({100, 80}, 2);
        const auto plain = AnnotationRenderer::render({rectangle}, screen, {0, 0, 100, 80});
        rectangle.isSelected = true;
        const std::vector<Annotation> list{rectangle};
        const auto selected = AnnotationRenderer::render(list, screen, {0, 0, 100, 80});
        QVERIFY(plain && selected);
        QCOMPARE(selected->bitmap, plain->bitmap);
        QVERIFY(fieldsOf(list[0]).isSelected);
    }

    void drawsInTheSamePlaceAsTheOverlay()
    {
        const Image screen = paper({120, 80}, 1.5);
        const Annotation arrow = shape<ArrowAnnotation>({15, 15}, {105, 65});
        const Rect selection{10, 20, 80, 40};
        const auto result = AnnotationRenderer::render({arrow}, screen, selection);
        QVERIFY(result);
        QCOMPARE(result->bitmap, drawn(arrow, 1.5).copy(15, 30, 120, 60));
    }

    void refusesASelectionWithoutExtent_data()
    {
        QTest::addColumn<Rect>("selection");
        QTest::addColumn<bool>("expected");
        QTest::newRow("no width") << Rect{10, 10, 0, 20} << false;
        QTest::newRow("no height") << Rect{10, 10, 20, 0} << false;
        QTest::newRow("negative") << Rect{10, 10, -5, 20} << false;
        QTest::newRow("not a number") << Rect{10, 10, qQNaN(), 20} << false;
        QTest::newRow("less than a pixel") << Rect{10, 10, 0.5, 20} << false;
        QTest::newRow("one pixel") << Rect{10, 10, 1, 1} << true;
        QTest::newRow("beyond any bitmap") << Rect{0, 0, 1e9, 10} << false;
    }
    void refusesASelectionWithoutExtent()
    {
        QFETCH(Rect, selection);
        const Image screen = screenOf({100, 80}, 1);
        QTEST(AnnotationRenderer::render({}, screen, selection).has_value(), "expected");
    }

    void rendersAnImageWithoutABitmapAtOnePixelAPoint()
    {
        const auto result = AnnotationRenderer::render({shape<LineAnnotation>({0, 50}, {100, 50})},
                                                       {{}, {100, 100}}, {10, 40, 50, 20});
        QVERIFY(result);
        QCOMPARE(result->bitmap.size(), QSize(50, 20));
        QCOMPARE(result->bitmap.pixelColor(25, 10), SystemColors::red);
        QCOMPARE(result->bitmap.pixelColor(25, 1).alpha(), 0);
    }

    void leavesTransparentWhatLiesBesideTheScreen()
    {
        const Image screen = screenOf({100, 80}, 1);
        const auto result = AnnotationRenderer::render({}, screen, {-10, -10, 50, 50});
        QVERIFY(result);
        QCOMPARE(result->bitmap.size(), QSize(50, 50));
        QCOMPARE(result->bitmap.pixelColor(9, 0).alpha(), 0);
        QCOMPARE(result->bitmap.pixelColor(10, 40).alpha(), 0);
        QCOMPARE(result->bitmap.pixel(10, 39), screen.bitmap.pixel(0, 79));
    }
};

QTEST_MAIN(TestAnnotationRenderer)
#include "tst_AnnotationRenderer.moc"
