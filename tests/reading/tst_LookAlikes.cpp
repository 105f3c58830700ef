// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/LookAlikes.h"
#include "reading/SymbolText.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

/// Capitals 10 high, small letters 7, baseline at 10.
constexpr LetterMetrics metrics{10, 10, 7, true};

InkSymbol symbol(const QString &text, const QRect &box, std::uint8_t ink = 255)
{
    return {text,
            box,
            90,
            box.left() == 0,
            1,
            box,
            std::vector<std::uint8_t>(std::size_t(box.width()) * box.height(), ink)};
}

/// A word of letters as high as capitals, wide enough not to be bars.
std::vector<InkSymbol> word(const QString &text)
{
    std::vector<InkSymbol> symbols;
    for (const QChar c : text)
        symbols.push_back(symbol(QString(c), QRect(int(symbols.size()) * 9, 0, 7, 10)));
    return symbols;
}

} // namespace

class TestLookAlikes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void leavesCaseAloneWhereFontsOfTwoSizesStandOnALine()
    {
        // Capitals of code 10 high; small letters of the sentence are as high, its ascenders 13.
        const auto read = [](int tallOnes) {
            std::vector<InkSymbol> symbols;
            for (int i = 0; i < tallOnes; ++i)
                symbols.push_back(symbol(QStringLiteral("d"), QRect(i * 9, -3, 7, 13)));
            symbols.push_back(symbol(QStringLiteral("s"), QRect(60, 0, 7, 10)));
            symbols.back().startsWord = true;
            settleLookAlikes(symbols, metrics);
            return symbols.back().text;
        };
        QCOMPARE(read(3), QStringLiteral("s"));
        QCOMPARE(read(2), QStringLiteral("S"));
    }

    void tellsLIAndOneByTheirNeighbours_data()
    {
        QTest::addColumn<QString>("read");
        QTest::addColumn<QString>("expected");
        QTest::newRow("among capitals") << "APl"
                                        << "API";
        QTest::newRow("between capitals, with small ones") << "URlT"
                                                           << "URIT";
        QTest::newRow("alone") << "l"
                               << "I";
        QTest::newRow("a bar alone") << "|"
                                     << "|";
        QTest::newRow("between small letters") << "aIk"
                                               << "alk";
        QTest::newRow("several between small letters") << "aIIk"
                                                       << "allk";
        QTest::newRow("at a start") << "lnk"
                                    << "lnk";
        QTest::newRow("between digits") << "2l3"
                                        << "213";
        QTest::newRow("zero between digits") << "2O3"
                                             << "203";
        QTest::newRow("five between digits") << "2S3"
                                             << "253";
        QTest::newRow("beside one digit") << "2OB"
                                          << "2OB";
        QTest::newRow("one capital") << "Al"
                                     << "Al";
    }
    void tellsLIAndOneByTheirNeighbours()
    {
        QFETCH(QString, read);
        LetterMetrics uncertain = metrics;
        uncertain.isCertain = false;
        std::vector<InkSymbol> symbols = word(read);
        settleLookAlikes(symbols, uncertain);
        QTEST(textOf(symbols), "expected");
    }

    void tellsTheCaseByTheHeight_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("read");
        QTest::addColumn<int>("height");
        QTest::addColumn<QString>("expected");
        QTest::newRow("small") << ""
                               << "C" << 7 << "c";
        QTest::newRow("capital") << ""
                                 << "c" << 10 << "C";
        QTest::newRow("between the two") << ""
                                         << "c" << 8 << "c";
        QTest::newRow("no capital behind a small letter") << "a"
                                                          << "c" << 10 << "ac";
        QTest::newRow("no small letter behind a capital") << "A"
                                                          << "C" << 7 << "AC";
        QTest::newRow("another shape") << ""
                                       << "R" << 7 << "R";
    }
    void tellsTheCaseByTheHeight()
    {
        QFETCH(QString, before);
        QFETCH(QString, read);
        QFETCH(int, height);
        std::vector<InkSymbol> symbols = word(before);
        const QRect box(int(symbols.size()) * 9, 10 - height, 7, height);
        symbols.push_back(symbol(read, box));
        settleLookAlikes(symbols, metrics);
        QTEST(textOf(symbols), "expected");
    }

    void tellsByTheInkInTheMiddle_data()
    {
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QString>("read");
        QTest::addColumn<QString>("expected");
        const QStringList dotted{" #### ", "##  ##", "#    #", "#    #", "# ## #",
                                 "# ## #", "#    #", "#    #", "##  ##", " #### "};
        const QStringList open{" #### ", "##  ##", "#    #", "#    #", "#    #",
                               "#    #", "#    #", "#    #", "##  ##", " #### "};
        const QStringList footed{"####  ", "  ##  ", "  ##  ", "  ##  ", "  ##  ",
                                 "  ##  ", "  ##  ", "  ##  ", "  ##  ", "######"};
        const QStringList ell{"##    ", "##    ", "##    ", "##    ", "##    ",
                              "##    ", "##    ", "##    ", "##    ", "######"};
        const QStringList serifs{"####   ", " ##    ", " ##    ", " ##    ", " ##    ",
                                 " ##    ", " ##    ", " ##   #", " ##   #", "#######"};
        QTest::newRow("dotted zero") << dotted << "O"
                                     << "0";
        QTest::newRow("dotted zero as a small letter") << dotted << "o"
                                                       << "0";
        QTest::newRow("capital O") << open << "O"
                                   << "O";
        QTest::newRow("l with a foot") << footed << "L"
                                       << "l";
        QTest::newRow("capital L") << ell << "L"
                                   << "L";
        QTest::newRow("capital L with serifs") << serifs << "L"
                                               << "L";
    }
    void tellsByTheInkInTheMiddle()
    {
        QFETCH(QStringList, rows);
        QFETCH(QString, read);
        QFETCH(QString, expected);
        InkSymbol one = symbol(read, QRect(18, 0, int(rows.front().size()), int(rows.size())), 0);
        for (std::size_t i = 0; i < one.glyph.size(); ++i) {
            const QString &row = rows[qsizetype(i) / rows.front().size()];
            one.glyph[i] = row[qsizetype(i) % row.size()] == '#' ? 255 : 0;
        }
        // Behind a digit no rule about the neighbours speaks.
        std::vector<InkSymbol> symbols = word("7");
        symbols.push_back(one);
        settleLookAlikes(symbols, metrics);
        QCOMPARE(textOf(symbols), "7" + expected);
    }

    void knowsABarByItsShape_data()
    {
        QTest::addColumn<QString>("read");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("emptyRow");
        QTest::addColumn<QString>("expected");
        QTest::newRow("one without a flag") << "1" << 2 << -1 << "alk";
        QTest::newRow("i without a dot") << "i" << 2 << -1 << "alk";
        QTest::newRow("exclamation mark without a dot") << "!" << 2 << -1 << "alk";
        QTest::newRow("i with a dot") << "i" << 2 << 2 << "aik";
        QTest::newRow("l with a dot") << "l" << 2 << 2 << "aik";
        QTest::newRow("wider than a bar") << "1" << 4 << -1 << "a1k";
    }
    void knowsABarByItsShape()
    {
        QFETCH(QString, read);
        QFETCH(int, width);
        QFETCH(int, emptyRow);
        InkSymbol bar = symbol(read, QRect(9, 0, width, 10));
        for (int x = 0; emptyRow >= 0 && x < width; ++x)
            bar.glyph[std::size_t(emptyRow * width + x)] = 0;
        std::vector<InkSymbol> symbols{symbol("a", QRect(0, 3, 7, 7)), bar,
                                       symbol("k", QRect(15, 0, 7, 10))};
        settleLookAlikes(symbols, metrics);
        QTEST(textOf(symbols), "expected");
    }
};

QTEST_APPLESS_MAIN(TestLookAlikes)
#include "tst_LookAlikes.moc"
