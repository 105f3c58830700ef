// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/WordBreaks.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

/// Characters 7 pixels wide with the given gaps between them; the engine saw no break.
std::vector<InkSymbol> spaced(const std::vector<int> &gaps)
{
    std::vector<InkSymbol> symbols{{"a", QRect(0, 0, 7, 10), 90, true, 1}};
    int x = 0;
    for (int gap : gaps) {
        x += 7 + gap;
        symbols.push_back({"a", QRect(x, 0, 7, 10), 90, false, 1});
    }
    return symbols;
}

std::vector<int> breaksOf(const std::vector<InkSymbol> &symbols)
{
    std::vector<int> breaks;
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        if (symbols[i].startsWord)
            breaks.push_back(int(i));
    }
    return breaks;
}

} // namespace

class TestWordBreaks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void findsABreakTheEngineMissed()
    {
        auto symbols = spaced({1, 2, 5, 1, 1});
        breakWords(symbols, 10);
        QCOMPARE(breaksOf(symbols), (std::vector{0, 3}));
    }
    void removesABreakWithoutAGap()
    {
        auto symbols = spaced({1, 1, 5, 1, 1});
        symbols[1].startsWord = true;
        symbols[3].startsWord = true;
        breakWords(symbols, 10);
        QCOMPARE(breaksOf(symbols), (std::vector{0, 3}));
    }
    void leavesACloseCallToTheEngine()
    {
        auto symbols = spaced({1, 1, 3, 1, 5, 1});
        symbols[3].startsWord = true;
        symbols[5].startsWord = true;
        breakWords(symbols, 10);
        QCOMPARE(breaksOf(symbols), (std::vector{0, 3, 5}));
    }
    void countsCellsWhereThePitchIsFixed()
    {
        // Narrow letters in wide cells: gaps as wide as a blank elsewhere.
        std::vector<InkSymbol> symbols;
        const std::vector<int> cells{0, 1, 2, 3, 5, 6, 7, 9};
        for (int cell : cells) {
            const int width = cell % 2 ? 2 : 7;
            symbols.push_back({"i", QRect(cell * 8 + (8 - width) / 2, 0, width, 10), 90, false, 1});
        }
        QVERIFY(fixedPitch(symbols, 10));
        breakWords(symbols, 10);
        QCOMPARE(breaksOf(symbols), (std::vector{0, 4, 7}));
    }
    void knowsProportionalText()
    {
        std::vector<InkSymbol> symbols;
        int x = 0;
        for (int width : {2, 11, 6, 3, 9, 2, 2, 7, 11, 3}) {
            symbols.push_back({"a", QRect(x, 0, width, 10), 90, false, 1});
            x += width + 2;
        }
        QVERIFY(!fixedPitch(symbols, 10));
    }
    void bearsNothingAndOneCharacter()
    {
        std::vector<InkSymbol> none;
        breakWords(none, 10);
        QVERIFY(none.empty());
        auto one = spaced({});
        one.front().startsWord = false;
        breakWords(one, 10);
        QVERIFY(one.front().startsWord);
    }
};

QTEST_APPLESS_MAIN(TestWordBreaks)
#include "tst_WordBreaks.moc"
