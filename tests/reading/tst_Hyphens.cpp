// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/Hyphens.h"
#include "reading/SymbolText.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

/// Capitals 10 high, baseline at 10.
constexpr LetterMetrics metrics{10, 10, 7, true};

/// Letters 6 wide and dashes of the given width, 2 apart; a blank is 5 wide.
std::vector<InkSymbol> line(const QString &text, int dashWidth)
{
    std::vector<InkSymbol> symbols;
    int x = 0;
    bool startsWord = true;
    for (const QChar c : text) {
        if (c == ' ') {
            x += 3;
            startsWord = true;
            continue;
        }
        const QRect box = c == '-' ? QRect(x, 6, dashWidth, 1) : QRect(x, 3, 6, 7);
        symbols.push_back({QString(c), box, 90, startsWord, 1, box});
        x += box.width() + (c == '.' ? 5 : 2);
        startsWord = false;
    }
    return symbols;
}

} // namespace

class TestHyphens : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void comparesWithTheSingleHyphens_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("width");
        QTest::addColumn<QString>("expected");
        QTest::newRow("as wide") << "a -b" << 4 << "a-b";
        QTest::newRow("hardly wider, at the start of a word") << "a -b" << 5 << "a-b";
        QTest::newRow("a pair at the start of a word") << "a -b" << 6 << "a--b";
        QTest::newRow("a pair, clearly") << "a -b" << 9 << "a--b";
        QTest::newRow("an en dash between words") << "a - b" << 7 << "a-b";
        QTest::newRow("a pair between words") << "a - b" << 8 << "a--b";
        QTest::newRow("an em dash") << "a - b" << 12 << "a-b";
    }
    void comparesWithTheSingleHyphens()
    {
        QFETCH(QString, text);
        QFETCH(int, width);
        std::vector<ReadPiece> pieces{{metrics, line("a-b", 4)}, {metrics, line(text, width)}};
        countHyphens(pieces);
        QCOMPARE(textOf(pieces[0].symbols), QString("a-b"));
        QTEST(textOf(pieces[1].symbols), "expected");
    }

    void takesAnEmDashInTheInkOfAWordForTwoHyphens_data()
    {
        QTest::addColumn<bool>("isAtStart");
        QTest::addColumn<QString>("expected");
        QTest::newRow("at its start") << true << "--a";
        QTest::newRow("in it") << false << "\u2014a";
    }
    void takesAnEmDashInTheInkOfAWordForTwoHyphens()
    {
        QFETCH(bool, isAtStart);
        QFETCH(QString, expected);
        const QRect ink(20, 3, 14, 7);
        std::vector<ReadPiece> pieces{
            {metrics,
             {{"x", QRect(0, 3, 6, 7), 90, true, 1, QRect(0, 3, 6, 7), {}},
              {QStringLiteral("\u2014"), QRect(20, 3, 7, 7), 90, isAtStart, 2, ink, {}},
              {"a", QRect(27, 3, 7, 7), 90, false, 2, ink, {}}}}};
        countHyphens(pieces);
        QCOMPARE(textOf(pieces[0].symbols), "x" + expected);
    }
    void namesATildeByItsWave_data()
    {
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QString>("read");
        QTest::addColumn<QString>("expected");
        const QStringList tilde{" ###    ", "##  ## #", "     ###"};
        QTest::newRow("read as two hyphens") << tilde << "--"
                                             << "~";
        QTest::newRow("read as both") << tilde << "-~"
                                      << "~";
        QTest::newRow("read as itself") << tilde << "~"
                                        << "~";
        QTest::newRow("read as a letter") << tilde << "w"
                                          << "w";
        QTest::newRow("level dash") << QStringList{"########", "########"} << "-"
                                    << "-";
        QTest::newRow("soft edge of a neighbour") << QStringList{"########", "       #"} << "-"
                                                  << "-";
        QTest::newRow("too small") << QStringList{"##  ", "  ##"} << "-"
                                   << "-";
    }
    void namesATildeByItsWave()
    {
        QFETCH(QStringList, rows);
        QFETCH(QString, read);
        QFETCH(QString, expected);
        const QRect unit(40, 4, int(rows.front().size()), int(rows.size()));
        InkMap ink{unit.size(), {}};
        for (const QString &row : rows) {
            for (QChar c : row)
                ink.contrast.push_back(c == '#' ? 255 : 0);
        }
        std::vector<InkSymbol> symbols;
        for (int i = 0; i < int(read.size()); ++i)
            symbols.push_back({read.mid(i, 1),
                               sliceOf(unit, i, int(read.size())),
                               90,
                               i == 0,
                               int(read.size()),
                               unit,
                               {}});
        nameTildes(symbols, ink, {unit, {}}, metrics);
        QCOMPARE(textOf(symbols), expected);
    }
    void comparesWithTheSameFontOnly()
    {
        LetterMetrics larger = metrics;
        larger.capHeight = 12;
        std::vector<ReadPiece> pieces{{metrics, line("a-b", 4)}, {larger, line("a - b", 8)}};
        countHyphens(pieces);
        QCOMPARE(textOf(pieces[1].symbols), QString("a-b"));
    }

    void readsALongDashThatBeginsAWordAsTwo_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<QString>("expected");
        QTest::newRow("a hyphen") << 6 << "a-b";
        QTest::newRow("two") << 7 << "a--b";
        QTest::newRow("two, wide") << 10 << "a--b";
        QTest::newRow("longer") << 11 << "a-b";
    }
    void readsALongDashThatBeginsAWordAsTwo()
    {
        QFETCH(int, width);
        std::vector<ReadPiece> pieces{{metrics, line("a -b", width)}};
        countHyphens(pieces);
        QTEST(textOf(pieces[0].symbols), "expected");
    }
};

QTEST_APPLESS_MAIN(TestHyphens)
#include "tst_Hyphens.moc"
