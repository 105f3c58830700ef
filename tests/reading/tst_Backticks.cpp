// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/Backticks.h"
#include "reading/SymbolText.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

/// Capitals 10 high, baseline at 10.
constexpr LetterMetrics metrics{10, 10, 7, true};

/// Rows of ink, '#' a stroke and '+' its soft edge, with its upper left corner at `top`.
InkSymbol mark(const QString &text, const QStringList &rows, int top = 0)
{
    const QRect box(0, top, int(rows.first().size()), int(rows.size()));
    InkSymbol symbol{text, box, 40, true, 1, box, {}};
    for (const QChar c : rows.join(QString()))
        symbol.glyph.push_back(c == '#' ? 255 : c == '+' ? 110 : 0);
    return symbol;
}

} // namespace

class TestBackticks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void areToldByTheirLean_data()
    {
        QTest::addColumn<QString>("read");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<int>("top");
        QTest::addColumn<QString>("expected");
        const QStringList left{"##..", ".##.", "..##"};
        const QStringList right{"..##", ".##.", "##.."};
        QTest::newRow("read as a quote") << "\u2018" << left << 0 << "`";
        QTest::newRow("read as an asterisk") << "*" << left << 0 << "`";
        QTest::newRow("passed over") << "" << left << 0 << "`";
        QTest::newRow("two rows of small text") << "*" << QStringList{"#+.", ".##"} << 0 << "`";
        QTest::newRow("two side by side")
            << "\u201c" << QStringList{"##...##..", ".##...##.", "..##...##"} << 0 << "``";
        QTest::newRow("a quote that leans the other way") << "\u2018" << right << 0 << "\u2018";
        QTest::newRow("a straight one") << "'" << QStringList{".#.", ".#.", ".#."} << 0 << "'";
        QTest::newRow("a tapering one") << "'" << QStringList{"###", "+#+", ".#."} << 0 << "'";
        QTest::newRow("as low as a comma") << "," << left << 8 << ",";
        QTest::newRow("what was read as a letter") << "l" << left << 0 << "l";
        QTest::newRow("a dash") << "-" << QStringList{"+####+"} << 0 << "-";
        QTest::newRow("an asterisk")
            << "*" << QStringList{"#.#.#", ".###.", "#####", ".###.", "#.#.#"} << 0 << "*";
        QTest::newRow("a backslash")
            << "\\" << QStringList{"##..", "##..", ".##.", ".##.", ".##.", "..##", "..##"} << 0
            << "\\";
    }
    void areToldByTheirLean()
    {
        QFETCH(QString, read);
        QFETCH(QStringList, rows);
        QFETCH(int, top);
        QFETCH(QString, expected);
        std::vector<InkSymbol> symbols{mark(read, rows, top)};
        nameBackticks(symbols, metrics);
        QString text;
        for (const InkSymbol &symbol : symbols)
            text += symbol.text;
        QCOMPARE(text, expected);
        QCOMPARE(symbols.front().startsWord, true);
        QCOMPARE(symbols.back().startsWord, symbols.size() == 1);
    }

    /// The opening quotes of some fonts are mirrored closing ones.
    void leavesAQuoteThatIsClosedAsOne()
    {
        InkSymbol opening = mark("\u2018", {"##..", ".##.", "..##"});
        InkSymbol letter = mark("a", {"####", "####", "####"}, 7);
        InkSymbol closing = mark("\u2019", {"..##", ".##.", "##.."});
        letter.unit.translate(6, 0);
        closing.unit.translate(12, 0);
        std::vector<InkSymbol> symbols{opening, letter, closing};
        nameBackticks(symbols, metrics);
        QCOMPARE(symbols[0].text, QStringLiteral("\u2018"));
        QCOMPARE(symbols[2].text, QStringLiteral("\u2019"));
        symbols[2].glyph = opening.glyph;
        nameBackticks(symbols, metrics);
        QCOMPARE(symbols[0].text, QStringLiteral("`"));
        QCOMPARE(symbols[2].text, QStringLiteral("`"));
    }
};

QTEST_APPLESS_MAIN(TestBackticks)
#include "tst_Backticks.moc"
