// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/OverlaySurface.h"

#include <QPainter>
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

/// Every pixel as the list makes it, over a white display.
QImage painted(const DisplayList &list)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    for (const QRect &rect : QRegion(image.rect()) - list.clear)
        painter.fillRect(rect, QColor(0, 0, 0, qRound(list.veil * 255)));
    for (const DisplayList::Item &item : list.items) {
        if (const auto *fill = std::get_if<DisplayList::Fill>(&item)) {
            painter.fillRect(fill->rect, QColor::fromRgba(qUnpremultiply(fill->color)));
            continue;
        }
        const auto &decal = std::get<DisplayList::Decal>(item);
        painter.setClipRect(decal.clip, decal.clip.isNull() ? Qt::NoClip : Qt::ReplaceClip);
        painter.drawImage(decal.at, decal.image);
    }
    return image;
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

Q_DECLARE_METATYPE(DisplayList)

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
        row("decal moves", {0, {}, {decal}}, {0, {}, {Decal{1, QPoint(61, 10), decal.image, {}}}},
            210);
        row("decal is clipped", {0, {}, {decal}}, {0, {}, {clipped}}, 200);
        row("decal is another", {0, {}, {decal}}, {0, {}, {other}}, 200);
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
        QTEST(int((damageBetween({}, manyFills(count)).rectCount())), "rectangles");
        QTEST(int((damageBetween(manyFills(count), {}).rectCount())), "rectangles");
        const QRegion damage = damageBetween({}, manyFills(count));
        for (const DisplayList::Item &item : manyFills(count).items)
            QVERIFY((QRegion(boundsOf(item)) - damage).isEmpty());
    }
};

QTEST_APPLESS_MAIN(TestOverlaySurface)
#include "tst_OverlaySurface.moc"
