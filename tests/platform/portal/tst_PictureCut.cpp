// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PictureCut.h"

#include <QTest>

using namespace tovek;

class TestPictureCut : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheScreens_data()
    {
        QTest::addColumn<QSize>("picture");
        QTest::addColumn<std::vector<QRect>>("layouts");
        QTest::addColumn<std::vector<QRect>>("parts");
        using Rects = std::vector<QRect>;
        const Rects side{{0, 0, 1280, 800}, {1280, 0, 1600, 1200}};
        QTest::newRow("one screen")
            << QSize(1280, 800) << Rects{{0, 0, 1280, 800}} << Rects{{0, 0, 1280, 800}};
        QTest::newRow("two of different heights") << QSize(2880, 1200) << side << side;
        QTest::newRow("twice the layout")
            << QSize(4160, 1600) << Rects{{0, 0, 1280, 800}, {1280, 0, 800, 600}}
            << Rects{{0, 0, 2560, 1600}, {2560, 0, 1600, 1200}};
        QTest::newRow("a fraction, rounded")
            << QSize(2560, 1600) << Rects{{0, 0, 1707, 1067}} << Rects{{0, 0, 2560, 1600}};
        QTest::newRow("left of the origin")
            << QSize(200, 50) << Rects{{0, 0, 100, 50}, {-100, 0, 100, 50}}
            << Rects{{100, 0, 100, 50}, {0, 0, 100, 50}};
        QTest::newRow("turned on its side")
            << QSize(1280 + 1200, 1600) << Rects{{0, 400, 1280, 800}, {1280, 0, 1200, 1600}}
            << Rects{{0, 400, 1280, 800}, {1280, 0, 1200, 1600}};
        QTest::newRow("two that show the same")
            << QSize(1280, 800) << Rects{{0, 0, 1280, 800}, {0, 0, 1280, 800}}
            << Rects{{0, 0, 1280, 800}, {0, 0, 1280, 800}};
        QTest::newRow("one window only") << QSize(600, 430) << side << Rects{};
        QTest::newRow("other screens") << QSize(2560, 800) << side << Rects{};
        QTest::newRow("no picture") << QSize() << side << Rects{};
        QTest::newRow("no screens") << QSize(100, 100) << Rects{} << Rects{};
    }
    void findsTheScreens()
    {
        QFETCH(QSize, picture);
        QFETCH(std::vector<QRect>, layouts);
        std::vector<PortalDisplay> displays;
        for (const QRect &layout : layouts)
            displays.push_back({quint32(displays.size() + 1), layout, layout});
        QTEST(partsOfPicture(picture, displays), "parts");
    }

    void leavesPixelsAsTheyAre()
    {
        QImage picture(300, 200, QImage::Format_RGB32);
        for (int y = 0; y < 200; ++y) {
            for (int x = 0; x < 300; ++x)
                picture.setPixel(x, y, qRgb(x % 256, y, 7));
        }
        const QRect part(100, 20, 150, 90);
        QCOMPARE(cutOut(picture, part, part.size()), picture.copy(part));
        QImage kept = cutOut(QImage(picture), part, part.size());
        QCOMPARE(kept, picture.copy(part)); // the memory stays with it
        const QImage before = picture;
        kept.fill(Qt::red);
        QCOMPARE(picture, before);
    }

    void fillsTheScreenWhereThePictureIsCoarser()
    {
        QImage picture(100, 100, QImage::Format_RGB32);
        picture.fill(0xff336699);
        const QImage cut = cutOut(picture, QRect(0, 0, 50, 50), {80, 75});
        QCOMPARE(cut.size(), QSize(80, 75));
        QCOMPARE(cut.pixel(40, 40), 0xff336699);
    }
};

QTEST_APPLESS_MAIN(TestPictureCut)
#include "tst_PictureCut.moc"
