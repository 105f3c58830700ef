// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/InkMap.h"

#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestInkMap : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void seesDarkAndLightTextAlike_data()
    {
        QTest::addColumn<QColor>("paper");
        QTest::addColumn<QColor>("ink");
        QTest::addColumn<int>("expected");
        QTest::newRow("black on white") << QColor(Qt::white) << QColor(Qt::black) << 255;
        QTest::newRow("white on black") << QColor(Qt::black) << QColor(Qt::white) << 255;
        QTest::newRow("faint") << QColor(100, 100, 100) << QColor(130, 130, 130) << 30;
        QTest::newRow("colour on colour") << QColor(0, 0, 90) << QColor(90, 0, 0) << 60;
    }
    void seesDarkAndLightTextAlike()
    {
        QFETCH(QColor, paper);
        QFETCH(QColor, ink);
        QFETCH(int, expected);
        QImage image(200, 40, QImage::Format_RGB32);
        image.fill(paper);
        QPainter(&image).fillRect(90, 10, 3, 12, ink);
        const InkMap map = inkMapOf(image);
        QCOMPARE(int(map.at(91, 15)), expected);
        QCOMPARE(int(map.at(89, 15)), 0);
        QCOMPARE(inkPatches(map, 20).size(), std::size_t(1));
        QCOMPARE(inkPatches(map, 20).front(), (InkPatch{QRect(90, 10, 3, 12), 36, expected}));
    }

    void judgesEachRowAgainstItsOwnBackground()
    {
        QImage image(200, 60, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.fillRect(0, 20, 200, 20, QColor(0, 0, 120));
        painter.fillRect(50, 5, 3, 10, Qt::black);
        painter.fillRect(50, 25, 3, 10, Qt::white);
        const auto patches = inkPatches(inkMapOf(image), 20);
        QCOMPARE(patches.size(), std::size_t(2));
        QCOMPARE(patches[0].box, QRect(50, 5, 3, 10));
        QCOMPARE(patches[1].box, QRect(50, 25, 3, 10));
    }

    void leavesOutRulesAndFrames()
    {
        QImage image(200, 60, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.fillRect(10, 30, 120, 1, Qt::black);
        painter.fillRect(150, 2, 1, 56, Qt::black);
        QVERIFY(inkPatches(inkMapOf(image), 20).empty());
    }

    void leavesOutTheEdgesBetweenSurfaces_data()
    {
        QTest::addColumn<QColor>("page");
        QTest::addColumn<QColor>("fill");
        QTest::addColumn<QColor>("frame");
        QTest::newRow("bubble") << QColor(Qt::white) << QColor(30, 110, 200) << QColor();
        QTest::newRow("bubble on dark") << QColor(36, 36, 36) << QColor(200, 196, 50) << QColor();
        QTest::newRow("framed card")
            << QColor(Qt::white) << QColor(230, 230, 240) << QColor(120, 90, 90);
        QTest::newRow("card with a darker frame")
            << QColor(245, 242, 248) << QColor(237, 235, 239) << QColor(200, 198, 203);
        QTest::newRow("card with a darker frame on white")
            << QColor(Qt::white) << QColor(236, 240, 237) << QColor(199, 204, 200);
        QTest::newRow("framed field")
            << QColor(Qt::white) << QColor(Qt::white) << QColor(90, 90, 90);
    }
    void leavesOutTheEdgesBetweenSurfaces()
    {
        QFETCH(QColor, page);
        QFETCH(QColor, fill);
        QFETCH(QColor, frame);
        QImage image(300, 100, QImage::Format_RGB32);
        image.fill(page);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(frame.isValid() ? QPen(frame) : QPen(Qt::NoPen));
        painter.setBrush(fill);
        painter.drawRoundedRect(QRectF(40.5, 20.5, 120, 30), 7, 7);
        painter.drawRoundedRect(QRectF(180.5, 20.5, 90, 30), 15, 15);
        const bool isDark = fill.lightness() < 128;
        painter.fillRect(60, 30, 2, 9, isDark ? Qt::white : Qt::black);
        const auto patches = inkPatches(inkMapOf(image), faintestInk);
        QCOMPARE(patches.size(), std::size_t(1));
        QCOMPARE(patches.front().box, QRect(60, 30, 2, 9));
    }

    void seesTheWritingOnSmallPlates_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<double>("radius");
        QTest::addColumn<QColor>("fill");
        QTest::addColumn<QColor>("frame");
        const QColor blue(47, 111, 222);
        QTest::newRow("button") << QSize(40, 24) << 4.0 << blue << QColor(Qt::transparent);
        QTest::newRow("pill") << QSize(44, 24) << 12.0 << blue << QColor(Qt::transparent);
        QTest::newRow("round badge") << QSize(22, 22) << 11.0 << blue << QColor(Qt::transparent);
        QTest::newRow("outlined") << QSize(40, 24) << 6.0 << QColor(Qt::white)
                                  << QColor(90, 96, 110);
        QTest::newRow("outlined and long")
            << QSize(60, 24) << 6.0 << QColor(Qt::white) << QColor(90, 96, 110);
    }
    void seesTheWritingOnSmallPlates()
    {
        QFETCH(QSize, size);
        QFETCH(double, radius);
        QFETCH(QColor, fill);
        QFETCH(QColor, frame);
        QImage image(160, 60, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(frame == QColor(Qt::transparent) ? QPen(Qt::NoPen) : QPen(frame));
        painter.setBrush(fill);
        painter.drawRoundedRect(QRectF(QPointF(50.5, 15.5), size), radius, radius);
        // An H in the middle, in white on the coloured plates.
        const QRect letter(50 + size.width() / 2 - 3, 15 + size.height() / 2 - 4, 7, 9);
        const QColor ink = fill == QColor(Qt::white) ? Qt::black : Qt::white;
        painter.fillRect(letter.left(), letter.top(), 2, 9, ink);
        painter.fillRect(letter.left() + 5, letter.top(), 2, 9, ink);
        painter.fillRect(letter.left(), letter.top() + 4, 7, 1, ink);
        painter.end();
        const auto patches = inkPatches(inkMapOf(image), faintestInk);
        QCOMPARE(patches.size(), std::size_t(1));
        QCOMPARE(patches.front().box, letter);
    }

    void takesNoLetterForAPlate_data()
    {
        QTest::addColumn<int>("stroke");
        for (int stroke : {3, 6, 9})
            QTest::addRow("O with a stroke of %d", stroke) << stroke;
    }
    void takesNoLetterForAPlate()
    {
        QFETCH(int, stroke);
        QImage image(120, 60, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Qt::black, stroke));
        painter.drawEllipse(QRectF(30, 14, 26, 30));
        painter.end();
        const auto patches = inkPatches(inkMapOf(image), faintestInk);
        QCOMPARE(patches.size(), std::size_t(1));
        QVERIFY(patches.front().box.width() >= 26 + stroke - 1);
    }

    void keepsWordsThatHangOnALine()
    {
        // As in Hindi: stems below one stroke, wider than any in Latin letters.
        QImage image(200, 60, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.fillRect(20, 20, 90, 3, Qt::black);
        for (int x = 24; x < 110; x += 12)
            painter.fillRect(x, 20, 4, 20, Qt::black);
        painter.end();
        const InkMap map = inkMapOf(image);
        QCOMPARE(int(map.at(60, 21)), 255);
        QCOMPARE(int(map.at(25, 30)), 255);
    }
    void keepsLettersOnUnderlines()
    {
        QImage image(200, 40, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.fillRect(10, 30, 180, 1, QColor(90, 90, 90));
        painter.fillRect(100, 20, 2, 15, Qt::black);
        const auto patches = inkPatches(inkMapOf(image), faintestInk);
        QCOMPARE(patches.size(), std::size_t(1));
        QCOMPARE(patches[0].box, QRect(100, 20, 2, 15));
    }

    void followsAGradient()
    {
        QImage image(256, 40, QImage::Format_RGB32);
        for (int x = 0; x < 256; ++x) {
            for (int y = 0; y < 40; ++y)
                image.setPixelColor(x, y, QColor(x, x, 255 - x));
        }
        QPainter(&image).fillRect(100, 10, 3, 12, Qt::white);
        const auto patches = inkPatches(inkMapOf(image), 20);
        QCOMPARE(patches.size(), std::size_t(1));
        QCOMPARE(patches.front().box, QRect(100, 10, 3, 12));
    }

    void bearsEverySizeAndContent_data()
    {
        QTest::addColumn<QSize>("size");
        for (int n : {1, 2, 3, 7, 20})
            QTest::addRow("%d square", n) << QSize(n, n);
        QTest::newRow("one row") << QSize(300, 1);
        QTest::newRow("one column") << QSize(1, 300);
    }
    void bearsEverySizeAndContent()
    {
        QFETCH(QSize, size);
        QImage image(size, QImage::Format_RGB32);
        for (int seed = 1; seed < 4; ++seed) {
            quint32 state = quint32(seed);
            for (int y = 0; y < size.height(); ++y) {
                for (int x = 0; x < size.width(); ++x) {
                    state = state * 1664525 + 1013904223;
                    image.setPixel(x, y, state >> 8);
                }
            }
            const InkMap map = inkMapOf(image);
            QCOMPARE(map.size, size);
            for (const InkPatch &patch : inkPatches(map, 1))
                QVERIFY(image.rect().contains(patch.box));
        }
        QVERIFY(inkPatches(inkMapOf(QImage()), 20).empty());
    }

    void joinsPatchesAcrossCorners()
    {
        InkMap map{{4, 3}, {9, 0, 0, 9, 0, 9, 9, 0, 9, 0, 0, 0}};
        const auto patches = inkPatches(map, 5);
        QCOMPARE(patches.size(), std::size_t(1));
        QCOMPARE(patches.front().box, QRect(0, 0, 4, 3));
        QCOMPARE(patches.front().area, 5);
    }
};

QTEST_APPLESS_MAIN(TestInkMap)
#include "tst_InkMap.moc"
