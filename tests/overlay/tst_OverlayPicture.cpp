// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/PaintedList.h"
#include "foundation/SystemColors.h"
#include "overlay/DisplayListPainter.h"
#include "overlay/OverlayPicture.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QRandomGenerator>
#include <QTest>

using namespace tovek;

namespace {

QImage noise(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    QRandomGenerator random(7);
    for (int y = 0; y < size.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            line[x] = random.generate() | 0xff000000;
    }
    return image;
}

/// The picture without the label, drawn the long way: all of it at once with one painter.
QImage drawnDirectly(const OverlayPicture &picture, const QImage &frozen)
{
    QImage image = frozen;
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const double scale = picture.space.scale;
    painter.fillRect(image.rect(), QColor::fromRgbF(0, 0, 0, float(picture.dimmingOpacity)));
    const QRectF rect = picture.space.pixelsFromRect(*picture.selection);
    QPainterPath path;
    path.addRoundedRect(rect, 4 * scale, 4 * scale);
    painter.fillPath(path, QBrush(frozen));
    painter.strokePath(path, QPen(colorOf(picture.captureMode), 2 * scale));
    if (picture.captureMode == CaptureMode::normal) {
        const QPointF points[] = {rect.bottomLeft(), rect.bottomRight(), rect.topLeft(),
                                  rect.topRight()};
        const int signs[][2] = {{1, -1}, {-1, -1}, {1, 1}, {-1, 1}};
        for (size_t i = 0; i < 4; ++i) {
            painter.save();
            const auto [sx, sy] = signs[i];
            painter.translate(points[i].x() - sx * 6 * scale, points[i].y() - sy * 6 * scale);
            painter.scale(sx, sy);
            QPainterPath handle(QPointF(8, 0));
            handle.lineTo(18, 0);
            handle.cubicTo(0, 0, 0, 0, 0, 18);
            handle.lineTo(0, 8);
            QColor color = colorOf(picture.captureMode);
            // Scaled before it is stroked: curves are flattened to the same steps then.
            handle = QTransform::fromScale(scale, scale).map(handle);
            color.setAlphaF(float(picture.handleOpacities[i]));
            painter.strokePath(
                handle, QPen(color, 2.5 * scale, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            painter.restore();
        }
    }
    return image;
}

int largestDifference(QRgb a, QRgb b)
{
    return std::max(
        {qAbs(qRed(a) - qRed(b)), qAbs(qGreen(a) - qGreen(b)), qAbs(qBlue(a) - qBlue(b))});
}

} // namespace

class TestOverlayPicture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void showsTheFrozenScreenBeforeTheFirstPress()
    {
        OverlayArtist artist(QGuiApplication::font());
        OverlayPicture picture;
        picture.space = {{300, 200}, 1};
        const DisplayList list = artist.draw(picture);
        QVERIFY((list == DisplayList{}));
        const QImage frozen = noise({300, 200});
        QCOMPARE(renderDisplayList(list, frozen, frozen.rect()), frozen);
    }

    void looksAsIfDrawnAtOnce_data()
    {
        QTest::addColumn<double>("scale");
        QTest::addColumn<Rect>("selection");
        QTest::addColumn<CaptureMode>("mode");
        QTest::addColumn<int>("tolerance");
        for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
            for (const CaptureMode mode :
                 {CaptureMode::normal, CaptureMode::copyImage, CaptureMode::copyText}) {
                QTest::addRow("mode %d at %g", int(mode), scale)
                    << scale << Rect{40 / scale, 50 / scale, 200 / scale, 120 / scale} << mode << 4;
            }
            // The painter's own coverage of a line between pixels is this far from the exact one.
            QTest::addRow("edges between pixels at %g", scale)
                << scale << Rect{40.3, 50.2, 123.4, 47.7} << CaptureMode::copyImage << 20;
            QTest::addRow("too small for corners at %g", scale)
                << scale << Rect{40 / scale, 50 / scale, 7 / scale, 120 / scale}
                << CaptureMode::copyText << 3;
        }
    }
    void looksAsIfDrawnAtOnce()
    {
        QFETCH(double, scale);
        QFETCH(Rect, selection);
        QFETCH(CaptureMode, mode);
        QFETCH(int, tolerance);
        OverlayPicture picture;
        picture.space = {{400 / scale, 300 / scale}, scale};
        picture.captureMode = mode;
        picture.dimmingOpacity = 0.5;
        picture.selection = selection;
        picture.handleOpacities = {1.0, 0.2, 0.6, 0.2};
        const QImage frozen = noise({400, 300});
        OverlayArtist artist(QGuiApplication::font());
        DisplayList list = artist.draw(picture);
        const QImage actual = renderDisplayList(list, frozen, frozen.rect());
        const QImage expected = drawnDirectly(picture, frozen);
        // The label is compared by eye, not here: it lies above the selection.
        const QRectF label(
            picture.space.pixelsFromRect({selection.minX() - 3, selection.maxY() + 9, 200, 40}));
        for (int y = 0; y < frozen.height(); ++y) {
            for (int x = 0; x < frozen.width(); ++x) {
                if (label.contains(x, y))
                    continue;
                const int difference = largestDifference(actual.pixel(x, y), expected.pixel(x, y));
                QVERIFY2(difference <= tolerance,
                         qPrintable(
                             QStringLiteral("%1,%2 differs by %3").arg(x).arg(y).arg(difference)));
            }
        }
    }

    void reusesItsDecalsDuringADrag()
    {
        OverlayArtist artist(QGuiApplication::font());
        OverlayPicture picture;
        picture.space = {{1000, 800}, 1};
        picture.dimmingOpacity = 0.5;
        picture.selection = Rect{100, 100, 222, 222};
        const DisplayList before = artist.draw(picture);
        picture.selection = Rect{100, 90, 222, 222};
        const DisplayList after = artist.draw(picture);
        QCOMPARE(after.items.size(), before.items.size());
        for (size_t i = 0; i < after.items.size(); ++i) {
            if (const auto *decal = std::get_if<DisplayList::Decal>(&after.items[i]))
                QCOMPARE(decal->key, std::get<DisplayList::Decal>(before.items[i]).key);
        }
    }

    void paintsAnyPartOfAList()
    {
        const QImage frozen = noise({400, 300});
        const DisplayList list{
            0.4,
            QRect(50, 60, 120, 90),
            {DisplayList::Fill{QRect(40, 50, 99, 3), 0xffffffff},
             fillsOf(0x80000080, {QRect(60, 70, 30, 20), QRect(80, 80, 30, 20)})}};
        const QImage whole = painted(frozen, list);
        for (const QRect part : {frozen.rect(), QRect(70, 75, 15, 10), QRect(300, 200, 50, 50)})
            QCOMPARE(renderDisplayList(list, frozen, part), whole.copy(part));
    }

    void paintsBlackBesideTheFrozenPicture_data()
    {
        QTest::addColumn<QImage>("frozen");
        QTest::newRow("over the edge, as rounding at scale 1.5 has it") << noise({40, 30});
        QTest::newRow("pixels lost") << QImage();
    }
    void paintsBlackBesideTheFrozenPicture()
    {
        QFETCH(QImage, frozen);
        const QRect native(30, 20, 20, 20);
        QImage expected(native.size(), QImage::Format_RGB32);
        expected.fill(Qt::black);
        QPainter(&expected).drawImage(QPoint(), frozen.copy(frozen.rect() & native));
        // What memory held before differs from time to time.
        for (int time = 0; time < 20; ++time) {
            QImage(native.size(), QImage::Format_RGB32).fill(Qt::red);
            QCOMPARE(renderDisplayList({}, frozen, native), expected);
        }
    }

    void coversItsChangesWithDamage()
    {
        OverlayArtist artist(QGuiApplication::font());
        OverlayPicture picture;
        picture.space = {{400, 300}, 1};
        const QImage frozen = noise({400, 300});
        DisplayList before;
        QImage shown = frozen;
        const Rect steps[] = {
            {50, 50, 5, 5}, {50, 50, 99, 80}, {50, 50, 101, 120}, {20, 10, 30, 9}};
        for (const Rect &step : steps) {
            picture.selection = step;
            picture.dimmingOpacity = std::min(0.5, picture.dimmingOpacity + 0.25);
            const DisplayList after = artist.draw(picture);
            const QImage expected = renderDisplayList(after, frozen, frozen.rect());
            QPainter painter(&shown);
            painter.setClipRegion(damageBetween(before, after));
            painter.drawImage(0, 0, expected);
            painter.end();
            QCOMPARE(shown, expected);
            before = after;
        }
    }
};

QTEST_MAIN(TestOverlayPicture)
#include "tst_OverlayPicture.moc"
