// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/SharedReadings.h"
#include "reading/SymbolText.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

constexpr LetterMetrics metrics{10, 10, 7, true};

/// One unit; its ink is the same wherever `shape` is.
InkSymbol symbol(const QString &text, int x, std::uint8_t shape, double confidence = 90)
{
    const QRect box(x, 3, 6, 7);
    std::vector<std::uint8_t> glyph(42, 0);
    for (std::size_t i = 0; i < glyph.size(); ++i)
        glyph[i] = std::uint8_t((i * 37 + shape * 83) % 256);
    return {text, box, confidence, x == 0, 1, box, glyph};
}

} // namespace

class TestSharedReadings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void readsTheSameInkTheSameWay_data()
    {
        QTest::addColumn<QString>("most");
        QTest::addColumn<QString>("other");
        QTest::addColumn<QString>("expected");
        QTest::newRow("misread") << "g"
                                 << "y"
                                 << "gggg";
        QTest::newRow("passed over") << "g"
                                     << ""
                                     << "gggg";
        QTest::newRow("read as two") << "m"
                                     << "rn"
                                     << "mmmm";
        QTest::newRow("l and I: the word tells") << "l"
                                                 << "I"
                                                 << "lllI";
        QTest::newRow("0 and O: three to one is not clear") << "0"
                                                            << "O"
                                                            << "000O";
        QTest::newRow("passed over in most places") << ""
                                                    << "g"
                                                    << "g";
    }
    void readsTheSameInkTheSameWay()
    {
        QFETCH(QString, most);
        QFETCH(QString, other);
        std::vector<ReadPiece> pieces{{metrics, {symbol(most, 0, 1)}},
                                      {metrics, {symbol(most, 0, 1)}},
                                      {metrics, {symbol(most, 0, 1)}},
                                      {metrics, {symbol(other, 0, 1)}}};
        shareReadings(pieces);
        QString texts;
        for (const ReadPiece &piece : pieces)
            texts += textOf(piece.symbols);
        QTEST(texts, "expected");
    }

    void needsAMajority()
    {
        std::vector<ReadPiece> pieces{{metrics, {symbol("g", 0, 1)}},
                                      {metrics, {symbol("y", 0, 1)}}};
        shareReadings(pieces);
        QCOMPARE(textOf(pieces[0].symbols) + textOf(pieces[1].symbols), QString("gy"));
    }

    void leavesOtherInkAlone()
    {
        std::vector<ReadPiece> pieces(3, {metrics, {symbol("g", 0, 1)}});
        pieces.push_back({metrics, {symbol("y", 0, 2)}});
        shareReadings(pieces);
        QCOMPARE(textOf(pieces[3].symbols), QString("y"));
    }

    void leavesOtherSizesAlone()
    {
        LetterMetrics larger = metrics;
        larger.capHeight = 13;
        std::vector<ReadPiece> pieces(3, {metrics, {symbol("o", 0, 1)}});
        pieces.push_back({larger, {symbol("a", 0, 1)}});
        shareReadings(pieces);
        QCOMPARE(textOf(pieces[3].symbols), QString("a"));
    }

    void keepsTheBreakOfAWordWhoseFirstInkIsNoText()
    {
        InkSymbol speck = symbol("", 20, 7);
        speck.startsWord = true;
        std::vector<ReadPiece> pieces{{metrics, {symbol("a", 0, 1), speck, symbol("b", 30, 2)}}};
        shareReadings(pieces);
        QCOMPARE(textOf(pieces[0].symbols), QString("ab"));
        QVERIFY(pieces[0].symbols[1].startsWord);
    }
};

QTEST_APPLESS_MAIN(TestSharedReadings)
#include "tst_SharedReadings.moc"
