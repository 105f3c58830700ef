// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/PictureShapes.h"
#include "reading/SymbolText.h"

#include <QRegularExpression>
#include <QTest>

#include <cmath>

using namespace tovek;

namespace {

/// Capitals 10 high, small letters 7, baseline at 10.
constexpr LetterMetrics metrics{10, 10, 7, true};

InkSymbol symbol(const QString &text, const QRect &box, bool startsWord)
{
    return {text,
            box,
            90,
            startsWord,
            1,
            box,
            std::vector<std::uint8_t>(std::size_t(box.width()) * box.height(), 0)};
}

} // namespace

class TestPictureShapes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void leavesOutArrowsThatStandAlone_data()
    {
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<bool>("isErased");
        QTest::newRow("to the right")
            << QStringList{"#....", "##...", "####.", "#####", "####.", "##...", "#...."} << true;
        QTest::newRow("down") << QStringList{"#######", ".#####.", "..###..", "...#..."} << true;
        QTest::newRow("four") << QStringList{"...##", "..#.#", ".#..#", "#####", "....#", "....#"}
                              << false;
        QTest::newRow("L") << QStringList{"##...", "##...", "##...", "##...", "#####"} << false;
        QTest::newRow("v") << QStringList{"#...#", "#...#", ".#.#.", ".#.#.", "..#.."} << false;
    }
    void leavesOutArrowsThatStandAlone()
    {
        QFETCH(QStringList, rows);
        QFETCH(bool, isErased);
        const QRect box(0, 10 - int(rows.size()), int(rows.front().size()), int(rows.size()));
        InkSymbol arrow = symbol("4", box, true);
        arrow.glyph.clear();
        for (const QChar pixel : rows.join(QString()))
            arrow.glyph.push_back(pixel == '#' ? 255 : 0);
        LetterMetrics uncertain = metrics;
        uncertain.isCertain = false;
        std::vector<InkSymbol> symbols{arrow, symbol("a", QRect(20, 3, 6, 7), true)};
        erasePictures(symbols, uncertain);
        QCOMPARE(symbols.size() == 1, isErased);
    }

    void leavesOutSquares_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<bool>("isFilled");
        QTest::addColumn<int>("corner");
        QTest::addColumn<bool>("isErased");
        QTest::newRow("swatch") << QSize(12, 12) << true << 0 << true;
        QTest::newRow("check box") << QSize(13, 13) << false << 0 << true;
        QTest::newRow("round as a letter") << QSize(8, 8) << false << 2 << false;
        QTest::newRow("dot") << QSize(3, 3) << true << 0 << false;
        QTest::newRow("upright bar") << QSize(6, 12) << true << 0 << false;
    }
    void leavesOutSquares()
    {
        QFETCH(QSize, size);
        QFETCH(bool, isFilled);
        QFETCH(int, corner);
        QFETCH(bool, isErased);
        InkSymbol square = symbol("O", QRect(QPoint(0, 10 - size.height()), size), true);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                const int toX = std::min(x, size.width() - 1 - x);
                const int toY = std::min(y, size.height() - 1 - y);
                const bool isSide = std::min(toX, toY) == 0 && toX + toY >= corner;
                square.glyph[std::size_t(y * size.width() + x)] = isFilled || isSide ? 255 : 0;
            }
        }
        LetterMetrics uncertain = metrics;
        uncertain.isCertain = false;
        std::vector<InkSymbol> symbols{square, symbol("a", QRect(20, 3, 6, 7), false)};
        erasePictures(symbols, uncertain);
        QCOMPARE(spacedTextOf(symbols).trimmed(), isErased ? QString("a") : QString("Oa"));
        QVERIFY(symbols.front().startsWord);
    }

    void leavesOutBulletsThatStandByThemselves_data()
    {
        QTest::addColumn<bool>("isAlone");
        QTest::addColumn<int>("hollow");
        QTest::addColumn<QString>("expected");
        QTest::newRow("bullet") << true << 0 << "ab";
        QTest::newRow("in a word") << false << 0 << "@ab";
        QTest::newRow("ring") << true << 2 << "@ ab";
    }
    void leavesOutBulletsThatStandByThemselves()
    {
        QFETCH(bool, isAlone);
        QFETCH(int, hollow);
        QFETCH(QString, expected);
        InkSymbol disc = symbol("@", QRect(0, 1, 8, 8), true);
        for (int y = 0; y < 8; ++y) {
            for (int x = 0; x < 8; ++x) {
                const double radius = std::hypot(x - 3.5, y - 3.5);
                disc.glyph[std::size_t(y) * 8 + x] = radius < 4.2 && radius > hollow ? 255 : 0;
            }
        }
        std::vector<InkSymbol> symbols{disc, symbol("a", QRect(14, 3, 6, 7), isAlone),
                                       symbol("b", QRect(22, 0, 6, 10), false)};
        erasePictures(symbols, metrics);
        QCOMPARE(spacedTextOf(symbols).trimmed(), expected);
    }

    void leavesOutWhatDoesNotStandOnTheLine_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QRect>("box");
        QTest::addColumn<bool>("isErased");
        QTest::newRow("capital") << "G" << QRect(0, 0, 9, 10) << false;
        QTest::newRow("icon as high as the line") << "G" << QRect(0, -4, 14, 16) << true;
        QTest::newRow("small letter") << "a" << QRect(0, 3, 6, 7) << false;
        QTest::newRow("small letter of an icon") << "a" << QRect(0, -2, 12, 13) << true;
        QTest::newRow("descender") << "g" << QRect(0, 3, 6, 10) << false;
        QTest::newRow("bracket") << "(" << QRect(0, -1, 4, 14) << false;
        QTest::newRow("equals sign") << "=" << QRect(0, 4, 6, 4) << false;
        QTest::newRow("menu icon") << "=" << QRect(0, -1, 12, 14) << true;
    }
    void leavesOutWhatDoesNotStandOnTheLine()
    {
        QFETCH(QString, first);
        QFETCH(QRect, box);
        QFETCH(bool, isErased);
        std::vector<InkSymbol> symbols{symbol(first, box, true),
                                       symbol("b", QRect(20, 0, 6, 10), true),
                                       symbol("c", QRect(28, 3, 6, 7), false)};
        erasePictures(symbols, metrics);
        QCOMPARE(spacedTextOf(symbols).trimmed(), isErased ? QString("bc") : first + " bc");
    }

    void keepsAWordOfWhichOneCharacterStands()
    {
        std::vector<InkSymbol> symbols{symbol("T", QRect(0, -2, 8, 14), true),
                                       symbol("o", QRect(9, 3, 6, 7), false),
                                       symbol("b", QRect(20, 0, 6, 10), true)};
        erasePictures(symbols, metrics);
        QCOMPARE(spacedTextOf(symbols).trimmed(), QString("To b"));
    }

    void bearsALineWithoutText()
    {
        std::vector<InkSymbol> symbols;
        erasePictures(symbols, metrics);
        QVERIFY(symbols.empty());
    }
};

QTEST_APPLESS_MAIN(TestPictureShapes)
#include "tst_PictureShapes.moc"
