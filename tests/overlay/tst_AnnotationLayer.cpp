// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "annotations/AnnotationDrawing.h"
#include "foundation/DrawingContext.h"
#include "foundation/SystemColors.h"
#include "overlay/AnnotationLayer.h"

#include <QFont>
#include <QGuiApplication>
#include <QPainter>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

using Items = std::vector<DisplayList::Item>;

const Size view{1200, 800};
const Rect everywhere{0, 0, 1200, 800};

template <typename Kind>
Kind shape(Point start, Point end)
{
    Kind kind;
    kind.startPoint = start;
    kind.endPoint = end;
    kind.color = SystemColors::red;
    return kind;
}

template <typename Kind>
Kind selected(Kind kind)
{
    kind.isSelected = true;
    return kind;
}

QImage paper(const ViewSpace &space)
{
    QImage image(qRound(space.size.width * space.scale), qRound(space.size.height * space.scale),
                 QImage::Format_RGB32);
    image.fill(qRgb(200, 210, 220));
    return image;
}

QImage composed(const Items &items, const ViewSpace &space)
{
    QImage image = paper(space);
    QPainter painter(&image);
    for (const auto &item : items) {
        const auto &decal = std::get<DisplayList::Decal>(item);
        painter.setClipRect(decal.clip);
        painter.drawImage(decal.at, decal.image);
    }
    return image;
}

int largestDifference(const QImage &a, const QImage &b)
{
    int largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QColor p(a.pixel(x, y));
            const QColor q(b.pixel(x, y));
            largest = std::max({largest, std::abs(p.red() - q.red()),
                                std::abs(p.green() - q.green()), std::abs(p.blue() - q.blue())});
        }
    }
    return largest;
}

qint64 bytesOf(const Items &items)
{
    qint64 bytes = 0;
    for (const auto &item : items)
        bytes += std::get<DisplayList::Decal>(item).image.sizeInBytes();
    return bytes;
}

std::vector<quint64> keysOf(const Items &items)
{
    std::vector<quint64> keys;
    for (const auto &item : items)
        keys.push_back(std::get<DisplayList::Decal>(item).key);
    return keys;
}

} // namespace

class TestAnnotationLayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QGuiApplication::setFont(QFont(QStringLiteral("DejaVu Sans"))); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void showsWhatDrawingShows_data()
    {
        QTest::addColumn<Annotation>("annotation");
        QTest::addColumn<double>("scale");
        TextAnnotation text = shape<TextAnnotation>({300, 400}, {300, 400});
        text.text = QString::fromUtf8("\u00c5ngstr\u00f6m\nfjord");
        const std::pair<const char *, Annotation> kinds[] = {
            {"small arrow", shape<ArrowAnnotation>({100, 100}, {160, 140})},
            {"tiny arrow", shape<ArrowAnnotation>({100, 100}, {102, 101})},
            {"long arrow", selected(shape<ArrowAnnotation>({1100, 700}, {50, 30}))},
            {"steep line", selected(shape<LineAnnotation>({100, 10}, {180, 790}))},
            {"flat line", shape<LineAnnotation>({10, 300}, {1190, 300})},
            {"large rectangle", selected(shape<RectangleAnnotation>({10.3, 10.7}, {1190, 790}))},
            {"flat rectangle", shape<RectangleAnnotation>({10, 100}, {1190, 101})},
            {"text", selected(text)},
        };
        for (const auto &[name, annotation] : kinds) {
            for (double scale : {1.0, 1.5})
                QTest::newRow(qPrintable(QStringLiteral("%1@%2").arg(name).arg(scale)))
                    << annotation << scale;
        }
    }
    void showsWhatDrawingShows()
    {
        QFETCH(Annotation, annotation);
        QFETCH(double, scale);
        const ViewSpace space{view, scale};
        QImage expected = paper(space);
        QPainter painter(&expected);
        DrawingContext context(painter, space);
        draw(annotation, context);
        AnnotationLayer layer;
        // Blending goes over a premultiplied picture, which rounds a little differently.
        QVERIFY(largestDifference(composed(layer.items({annotation}, space, everywhere), space),
                                  expected)
                <= 3);
    }

    void keepsPiecesApart()
    {
        const Annotation kinds[] = {selected(shape<ArrowAnnotation>({1100, 700}, {50, 30})),
                                    selected(shape<RectangleAnnotation>({10, 10}, {1190, 790}))};
        for (const Annotation &annotation : kinds) {
            const std::vector<QRect> pieces = piecesOf(annotation, {view, 2});
            QVERIFY(pieces.size() > 3);
            for (size_t i = 0; i < pieces.size(); ++i) {
                for (size_t j = 0; j < i; ++j)
                    QVERIFY(!pieces[i].intersects(pieces[j]));
            }
        }
    }

    void staysSmallAroundAWholeScreen()
    {
        const ViewSpace space{{3840, 2160}, 1};
        const Rect screen{0, 0, 3840, 2160};
        AnnotationLayer layer;
        QVERIFY(
            bytesOf(layer.items({shape<RectangleAnnotation>({2, 2}, {3838, 2158})}, space, screen))
            < 512 * 1024);
        QVERIFY(bytesOf(layer.items({shape<ArrowAnnotation>({2, 2}, {3838, 2158})}, space, screen))
                < 3 * 1024 * 1024);
    }

    void showsALineThatIsLongerThanAnyPicture_data()
    {
        QTest::addColumn<double>("scale");
        QTest::addColumn<double>("left");
        for (double scale : {1.0, 2.0}) {
            for (double left : {100.0, -20000.0, -70000.0})
                QTest::addRow("from %.0f @%.0f", left, scale) << scale << left;
        }
    }
    void showsALineThatIsLongerThanAnyPicture()
    {
        QFETCH(double, scale);
        QFETCH(double, left);
        const ViewSpace space{view, scale};
        TextAnnotation line = shape<TextAnnotation>({left, 400}, {left, 400});
        line.text = QStringLiteral("mw").repeated(4000);
        const Annotation annotation = selected(line);
        AnnotationLayer layer;
        const Items items = layer.items({annotation}, space, everywhere);
        QImage expected = paper(space);
        QPainter painter(&expected);
        DrawingContext context(painter, space);
        draw(annotation, context);
        QVERIFY(expected != paper(space));
        QVERIFY(largestDifference(composed(items, space), expected) <= 3);
        QVERIFY(bytesOf(items) < 3 * 1024 * 1024);
        for (const QRect &piece : piecesOf(annotation, space))
            QVERIFY(piece.width() <= 2048 && piece.height() <= 2048);
    }

    void rendersWhatComesIntoSight()
    {
        const ViewSpace space{view, 1};
        TextAnnotation line = shape<TextAnnotation>({100, 400}, {100, 400});
        line.text = QStringLiteral("mw").repeated(4000);
        Annotation annotation = line;
        AnnotationLayer layer;
        for (int i = 0; i < 6; ++i) {
            const Items items = layer.items({annotation}, space, everywhere);
            AnnotationLayer fresh;
            QCOMPARE(composed(items, space),
                     composed(fresh.items({annotation}, space, everywhere), space));
            QVERIFY(bytesOf(items) < 3 * 1024 * 1024);
            moveBy(annotation, i < 3 ? -700 : 900, 0);
        }
    }

    void rendersOnlyWhatChanged()
    {
        const ViewSpace space{view, 1};
        Annotation first = shape<RectangleAnnotation>({100, 100}, {200, 200});
        Annotation second = shape<LineAnnotation>({300, 100}, {400, 200});
        AnnotationLayer layer;
        const Items before = layer.items({first, second}, space, everywhere);
        QVERIFY(layer.items({first, second}, space, everywhere) == before);
        fieldsOf(second).color = SystemColors::blue;
        const Items after = layer.items({first, second}, space, everywhere);
        QVERIFY(after[0] == before[0]);
        QVERIFY(keysOf(after)[1] != keysOf(before)[1]);
        fieldsOf(first).isSelected = true;
        QVERIFY(keysOf(layer.items({first, second}, space, everywhere))[0] != keysOf(before)[0]);
    }

    void keepsPicturesThatMoveByWholePixels_data()
    {
        QTest::addColumn<double>("scale");
        QTest::addColumn<double>("dx");
        QTest::addColumn<bool>("expected");
        QTest::newRow("a point") << 1.0 << 1.0 << true;
        QTest::newRow("a pixel of two") << 2.0 << 0.5 << true;
        QTest::newRow("half a pixel") << 1.0 << 0.5 << false;
        QTest::newRow("one and a half pixels") << 1.5 << 1.0 << false;
        QTest::newRow("three pixels of one and a half") << 1.5 << 2.0 << true;
    }
    void keepsPicturesThatMoveByWholePixels()
    {
        QFETCH(double, scale);
        QFETCH(double, dx);
        QFETCH(bool, expected);
        const ViewSpace space{view, scale};
        Annotation annotation = shape<ArrowAnnotation>({100, 100}, {160, 140});
        AnnotationLayer layer;
        const Items before = layer.items({annotation}, space, everywhere);
        moveBy(annotation, dx, -4);
        const Items after = layer.items({annotation}, space, everywhere);
        QCOMPARE(keysOf(after) == keysOf(before), expected);
        AnnotationLayer fresh;
        QVERIFY(largestDifference(composed(after, space),
                                  composed(fresh.items({annotation}, space, everywhere), space))
                <= 1);
    }

    void rendersAgainWhenOneEndMoves()
    {
        const ViewSpace space{view, 1};
        Annotation annotation = shape<LineAnnotation>({100, 100}, {160, 140});
        AnnotationLayer layer;
        const Items before = layer.items({annotation}, space, everywhere);
        fieldsOf(annotation).endPoint = {161, 140};
        QVERIFY(keysOf(layer.items({annotation}, space, everywhere)) != keysOf(before));
        fieldsOf(annotation).startPoint = {101, 101};
        QVERIFY(keysOf(layer.items({annotation}, space, everywhere)) != keysOf(before));
    }

    void clipsToTheSelection()
    {
        const ViewSpace space{view, 2};
        AnnotationLayer layer;
        const Annotation line = shape<LineAnnotation>({0, 200}, {400, 200});
        const Items items = layer.items({line}, space, {100, 150, 100, 100});
        QCOMPARE(items.size(), size_t(1));
        QCOMPARE(std::get<DisplayList::Decal>(items[0]).clip, QRect(200, 1100, 200, 200));
        QVERIFY(layer.items({line}, space, {100, 300, 100, 100}).empty());
    }

    void leavesOutDegenerateShapes()
    {
        AnnotationLayer layer;
        QVERIFY(
            layer.items({selected(shape<LineAnnotation>({5, 5}, {5, 5}))}, {view, 1}, everywhere)
                .empty());
    }
};

QTEST_MAIN(TestAnnotationLayer)
#include "tst_AnnotationLayer.moc"
