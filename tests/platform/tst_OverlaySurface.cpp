// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/PaintedList.h"

#include <QTest>

using namespace tovek;

namespace {

const QSize size(120, 80);

QImage decalImage(QRgb color)
{
    QImage image(20, 10, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

/// Over a white display.
QImage painted(const DisplayList &list)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    return painted(image, list);
}

/// A part of a page of 100 words, apart from each other.
DisplayList::Fills words(int from, int to, QRgb color)
{
    std::vector<QRect> rects;
    for (int i = from; i < to; ++i)
        rects.emplace_back(i % 10 * 12, i / 10 * 8, 10, 6);
    return fillsOf(color, rects);
}

/// Apart from each other, in rows of a hundred.
DisplayList manyFills(int count)
{
    DisplayList list;
    for (int i = 0; i < count; ++i)
        list.items.push_back(
            DisplayList::Fill{QRect(i % 100 * 30, i / 100 * 20, 20, 10), 0x20000080});
    return list;
}

int area(const QRegion &region)
{
    int pixels = 0;
    for (const QRect &rect : region)
        pixels += rect.width() * rect.height();
    return pixels;
}

} // namespace

class TestOverlaySurface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    /// `most`: the pixels that the damage may cover.
    void damagesWhatDiffersAndLittleMore_data()
    {
        QTest::addColumn<DisplayList>("before");
        QTest::addColumn<DisplayList>("after");
        QTest::addColumn<int>("most");
        using Fill = DisplayList::Fill;
        using Decal = DisplayList::Decal;
        const Fill red{QRect(10, 10, 30, 30), 0xffff0000};
        const Fill green{QRect(30, 30, 30, 30), 0xff00ff00};
        const Fill shade{QRect(20, 20, 20, 20), 0x80000080};
        const Decal decal{1, QPoint(60, 10), decalImage(0xff0000ff), {}};
        const Decal clipped{1, QPoint(60, 10), decalImage(0xff0000ff), QRect(60, 10, 5, 5)};
        const Decal other{2, QPoint(60, 10), decalImage(0xff00ffff), {}};
        const QRect hole(20, 20, 40, 40);
        const int all = size.width() * size.height();
        const auto row = [](const char *name, DisplayList before, DisplayList after, int most) {
            QTest::newRow(name) << before << after << most;
        };
        row("nothing to nothing", {}, {}, 0);
        row("the same", {0.5, hole, {red, decal}}, {0.5, hole, {red, decal}}, 0);
        row("veil appears", {}, {0.2, {}, {}}, all);
        row("veil around a hole changes", {0.2, hole, {}}, {0.3, hole, {}}, all - 1600);
        row("hole without a veil", {0, {}, {}}, {0, hole, {}}, 0);
        row("hole opens", {0.5, {}, {}}, {0.5, hole, {}}, 1600);
        row("hole grows by a pixel", {0.5, hole, {}}, {0.5, hole.adjusted(0, 0, 1, 1), {}}, 81);
        row("hole moves apart", {0.5, hole, {}}, {0.5, QRect(70, 20, 10, 10), {}}, 1700);
        row("item comes last", {0, {}, {red}}, {0, {}, {red, green}}, 900);
        row("item comes first", {0, {}, {green}}, {0, {}, {red, green}}, 900);
        row("item comes between", {0, {}, {red, decal}}, {0, {}, {red, green, decal}}, 900);
        row("item goes first", {0, {}, {red, green, decal}}, {0, {}, {green, decal}}, 900);
        row("all items go", {0, {}, {red, decal}}, {}, 1100);
        row("items change order", {0, {}, {red, green}}, {0, {}, {green, red}}, 1800);
        row("twins, one goes", {0, {}, {shade, shade}}, {0, {}, {shade}}, 400);
        row("colour changes", {0, {}, {red, green}}, {0, {}, {Fill{red.rect, 0xff000000}, green}},
            900);
        row("line grows", {0, {}, {Fill{QRect(10, 10, 2, 30), 0x80000080}}},
            {0, {}, {Fill{QRect(10, 10, 2, 40), 0x80000080}}}, 20);
        row("line moves along itself", {0, {}, {Fill{QRect(10, 10, 30, 2), 0x80000080}}},
            {0, {}, {Fill{QRect(13, 10, 30, 2), 0x80000080}}}, 12);
        row("line moves across itself", {0, {}, {Fill{QRect(10, 10, 30, 2), 0x80000080}}},
            {0, {}, {Fill{QRect(10, 14, 30, 2), 0x80000080}}}, 120);
        row("decal moves", {0, {}, {decal}}, {0, {}, {Decal{1, QPoint(61, 10), decal.image, {}}}},
            210);
        row("decal is clipped", {0, {}, {decal}}, {0, {}, {clipped}}, 200);
        row("decal is another", {0, {}, {decal}}, {0, {}, {other}}, 200);
        constexpr QRgb blue = 0x20000020, gray = 0x20202020, bold = 0x80000080;
        const auto page = words(0, 100, blue);
        row("the same words in another place of memory", {0, {}, {page}},
            {0, {}, {words(0, 100, blue)}}, 0);
        row("words come", {0, {}, {red}}, {0, {}, {red, words(0, 5, blue)}}, 300);
        row("a word more", {0, {}, {words(0, 99, blue)}}, {0, {}, {page}}, 60);
        row("a word less", {0, {}, {page}}, {0, {}, {words(1, 100, blue)}}, 60);
        row("words of another colour", {0, {}, {words(0, 5, blue)}}, {0, {}, {words(0, 5, gray)}},
            300);
        row("one is emphasized", {0, {}, {page}}, {0, {}, {page, words(7, 8, bold)}}, 60);
        row("another is emphasized", {0, {}, {page, words(7, 8, bold)}},
            {0, {}, {page, words(9, 10, bold)}}, 120);
        row("colours change order", {0, {}, {words(0, 2, blue), words(0, 3, bold)}},
            {0, {}, {words(0, 3, bold), words(0, 2, blue)}}, 180);
        row("a colour between comes", {0, {}, {words(0, 2, blue), words(0, 3, bold)}},
            {0, {}, {words(0, 2, blue), words(4, 5, gray), words(0, 3, bold)}}, 60);
        row("words below and above a picture", {0, {}, {page, decal}}, {0, {}, {decal, page}},
            size.width() * size.height());
    }
    void damagesWhatDiffersAndLittleMore()
    {
        QFETCH(DisplayList, before);
        QFETCH(DisplayList, after);
        QFETCH(int, most);
        const QRegion damage = damageBetween(before, after) & QRect(QPoint(), size);
        const QImage from = painted(before);
        const QImage to = painted(after);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                if (from.pixel(x, y) != to.pixel(x, y))
                    QVERIFY2(damage.contains(QPoint(x, y)),
                             qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
            }
        }
        QCOMPARE_LE(area(damage), most);
    }

    void staysSimpleHoweverMuchDiffers_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("rectangles");
        QTest::newRow("few") << 3 << 3;
        QTest::newRow("as many as are kept apart") << 64 << 64;
        QTest::newRow("one more") << 65 << 1;
        QTest::newRow("a page of words") << 20000 << 1;
    }
    void staysSimpleHoweverMuchDiffers()
    {
        QFETCH(int, count);
        std::vector<QRect> rects;
        for (const DisplayList::Item &item : manyFills(count).items)
            rects.push_back(boundsOf(item));
        const DisplayList together{0, {}, {fillsOf(0x20000080, rects)}};
        QTEST(int((damageBetween({}, together).rectCount())), "rectangles");
        QTEST(int((damageBetween(together, {}).rectCount())), "rectangles");
        QTEST(int((damageBetween({}, manyFills(count)).rectCount())), "rectangles");
        QTEST(int((damageBetween(manyFills(count), {}).rectCount())), "rectangles");
        const QRegion damage = damageBetween({}, manyFills(count));
        for (const DisplayList::Item &item : manyFills(count).items)
            QVERIFY((QRegion(boundsOf(item)) - damage).isEmpty());
    }
};

QTEST_APPLESS_MAIN(TestOverlaySurface)
#include "tst_OverlaySurface.moc"
