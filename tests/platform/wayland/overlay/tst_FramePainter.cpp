// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/PaintedList.h"
#include "platform/wayland/overlay/FramePainter.h"

#include <QTest>

using namespace tovek;

namespace {

constexpr QSize size(121, 80);

/// No two pixels beside each other are alike.
QImage display()
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x * 37 % 256, y * 91 % 256, (x + y) * 53 % 256));
    return image;
}

/// From clear to opaque.
QImage decalImage()
{
    QImage image(23, 11, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qPremultiply(qRgba(250, 120, y * 20, x * 255 / 22)));
    return image;
}

/// Byte by byte, rounded as the toolkit rounds.
QRgb plainlyBlended(QRgb pixel, int alpha)
{
    const auto part = [alpha](int byte) {
        const int product = byte * (255 - alpha);
        return (product + (product >> 8) + 128) >> 8;
    };
    return qRgb(part(qRed(pixel)), part(qGreen(pixel)), part(qBlue(pixel)));
}

/// What a compositor makes of a frame's pixel over a display's.
QRgb shownOver(QRgb above, QRgb below)
{
    const QRgb rest = plainlyBlended(below, qAlpha(above));
    return qRgb(qRed(above) + qRed(rest), qGreen(above) + qGreen(rest), qBlue(above) + qBlue(rest));
}

int worst(QRgb a, QRgb b)
{
    return std::max(
        {qAbs(qRed(a) - qRed(b)), qAbs(qGreen(a) - qGreen(b)), qAbs(qBlue(a) - qBlue(b))});
}

} // namespace

class TestFramePainter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    /// Inside the damage as the toolkit's painter does it but for the rounding of colours, and
    /// nothing outside.
    void paintsTheDamageAndNothingElse_data()
    {
        QTest::addColumn<DisplayList>("list");
        QTest::addColumn<QRegion>("damage");
        using Fill = DisplayList::Fill;
        using Decal = DisplayList::Decal;
        const QRect hole(20, 20, 41, 40);
        const Fill solid{QRect(15, 18, 31, 3), 0xffff9500};
        const Fill shade{QRect(10, 30, 100, 33), 0x80402010};
        const Decal decal{1, QPoint(50, 50), decalImage(), {}};
        const Decal clipped{1, QPoint(70, 10), decalImage(), QRect(75, 12, 9, 30)};
        const Decal outside{1, QPoint(110, -4), decalImage(), {}};
        const auto words = fillsOf(0x20000020, {QRect(3, 3, 10, 5), QRect(8, 5, 30, 30)});
        const QRegion all(QRect(QPoint(), size));
        const QRegion parts =
            QRegion(0, 0, 33, 21) + QRegion(55, 15, 40, 61) + QRegion(120, 79, 1, 1);
        const QRegion beyond(-20, -20, 200, 60);
        const auto row = [&](const char *name, const DisplayList &list) {
            QTest::addRow("%s, everywhere", name) << list << all;
            QTest::addRow("%s, in parts", name) << list << parts;
            QTest::addRow("%s, beyond the edges", name) << list << beyond;
        };
        row("nothing", {});
        row("hole without a veil", {0, hole, {}});
        row("veil", {0.5, {}, {}});
        row("veil around a hole", {0.31, hole, {}});
        row("whole display is the hole", {0.5, QRect(QPoint(), size), {}});
        row("black veil", {1, hole, {}});
        row("fills", {0.5, hole, {solid, shade}});
        row("decals", {0.5, hole, {decal, clipped, outside}});
        row("words", {0, {}, {words, shade}});
        row("all of them", {0.5, hole, {solid, decal, words, shade, clipped}});
    }
    void paintsTheDamageAndNothingElse()
    {
        QFETCH(DisplayList, list);
        QFETCH(QRegion, damage);
        constexpr QRgb untouched = 0x80123456;
        const auto frame = SharedPixels::create(size);
        const QImage made = SharedPixels::image(frame, QImage::Format_ARGB32_Premultiplied);
        std::fill_n(reinterpret_cast<QRgb *>(frame->data()), size.width() * size.height(),
                    untouched);
        paintFrame(*frame, list, damage);
        const QImage below = display();
        const QImage expected = painted(below, list);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                const QRgb is = reinterpret_cast<const QRgb *>(made.constScanLine(y))[x];
                const bool isRight = damage.contains(QPoint(x, y))
                    ? worst(shownOver(is, below.pixel(x, y)), expected.pixel(x, y)) <= 2
                    : is == untouched;
                if (!isRight)
                    QFAIL(qPrintable(QStringLiteral("%1, %2: %3 for %4")
                                         .arg(x)
                                         .arg(y)
                                         .arg(is, 8, 16)
                                         .arg(expected.pixel(x, y), 8, 16)));
            }
        }
    }

    /// The same bytes, however many pixels of a row are blended at once.
    void blendsEveryByteAsThePlainFormula()
    {
        QImage bytes(256, 1, QImage::Format_RGB32);
        for (int x = 0; x < bytes.width(); ++x)
            bytes.setPixel(x, 0, qRgb(x, 255 - x, x * 7 % 256));
        const DisplayList::Decal below{1, QPoint(), bytes, {}};
        const QRegion all(QRect(QPoint(), bytes.size()));
        const auto frame = SharedPixels::create(bytes.size());
        const auto *made = reinterpret_cast<const QRgb *>(frame->data());
        for (int alpha = 0; alpha <= 255; ++alpha) {
            for (const QRect &shaded : {QRect(0, 0, 256, 1), QRect(1, 0, 1, 1), QRect(3, 0, 2, 1),
                                        QRect(2, 0, 7, 1), QRect(5, 0, 251, 1)}) {
                const DisplayList::Fill shade{shaded, QRgb(alpha) << 24};
                paintFrame(*frame, {0, {}, {below, shade}}, all);
                for (int x = 0; x < bytes.width(); ++x)
                    QCOMPARE(made[x],
                             plainlyBlended(bytes.pixel(x, 0),
                                            shaded.contains(QPoint(x, 0)) ? alpha : 0));
            }
        }
    }

    void joinsWhatLiesCloseTogether_data()
    {
        using Rects = std::vector<QRect>;
        QTest::addColumn<Rects>("rects");
        QTest::addColumn<size_t>("most");
        const QRect one(0, 0, 100, 10);
        QTest::newRow("nothing") << Rects() << size_t(0);
        QTest::newRow("one") << Rects{one} << size_t(1);
        QTest::newRow("one inside another") << Rects{one, QRect(5, 2, 10, 3)} << size_t(1);
        QTest::newRow("with as much between as one costs")
            << Rects{one, one.translated(0, 20)} << size_t(1);
        QTest::newRow("with more between") << Rects{one, one.translated(0, 21)} << size_t(2);
        QTest::newRow("by way of a third")
            << Rects{one, one.translated(0, 35), one.translated(0, 18)} << size_t(1);
        QTest::newRow("a line across the screen and one down it")
            << Rects{QRect(0, 0, 2000, 2), QRect(0, 0, 2, 1000)} << size_t(2);
    }
    void joinsWhatLiesCloseTogether()
    {
        QFETCH(std::vector<QRect>, rects);
        const std::vector<QRect> fewer = joined(rects);
        QTEST(fewer.size(), "most");
        for (const QRect &rect : rects)
            QVERIFY(std::any_of(fewer.begin(), fewer.end(),
                                [&rect](const QRect &known) { return known.contains(rect); }));
    }

    /// Not a trace, so that the compositor shows the display's own pixels.
    void isClearWhereNothingLiesOver()
    {
        const auto frame = SharedPixels::create(size);
        const QRect hole(20, 20, 41, 40);
        const QRegion all(QRect(QPoint(), size));
        paintFrame(*frame, {1, {}, {}}, all);
        paintFrame(*frame, {0.5, hole, {}}, all);
        const auto *made = reinterpret_cast<const QRgb *>(frame->data());
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                QCOMPARE(made[y * size.width() + x],
                         hole.contains(x, y) ? QRgb(0) : QRgb(128) << 24);
    }
};

QTEST_GUILESS_MAIN(TestFramePainter)
#include "tst_FramePainter.moc"
