// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/GlyphNet.h"
#include "reading/GlyphView.h"
#include "reading/PictureGlyphs.h"
#include "reading/SymbolText.h"

#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

LetterMetrics line()
{
    LetterMetrics metrics;
    metrics.baseline = 20;
    metrics.capHeight = 10;
    metrics.xHeight = 7;
    metrics.isCertain = true;
    return metrics;
}

InkSymbol symbolOf(const QString &text, QPoint at, const QStringList &rows)
{
    InkSymbol symbol;
    symbol.text = text;
    symbol.unit = symbol.box = QRect(at, QSize(int(rows.first().size()), int(rows.size())));
    symbol.confidence = 99;
    for (const QString &row : rows) {
        for (const QChar c : row)
            symbol.glyph.push_back(c == '#' ? 255 : c == '+' ? 130 : 0);
    }
    return symbol;
}

const QStringList letterN{"##....##", "###...##", "###...##", "####..##", "##.#..##",
                          "##..#.##", "##..####", "##...###", "##...###", "##....##"};
const QStringList letterO{"..####..", ".##..##.", "##....##", "##....##", "##....##",
                          "##....##", "##....##", "##....##", ".##..##.", "..####.."};
const QStringList letterK{"##...##.", "##..##..", "##.##...", "####....", "####....",
                          "##.##...", "##..##..", "##...##.", "##....##", "##....##"};

/// A sheet of paper with lines, as beside "Copy".
InkSymbol sheet(const QString &text, int x)
{
    QImage image(14, 16, QImage::Format_Grayscale8);
    image.fill(0);
    QPainter painter(&image);
    painter.setPen(QColor(150, 150, 150));
    painter.drawRect(0, 0, 13, 15);
    painter.fillRect(1, 1, 12, 14, QColor(40, 40, 40));
    for (int y = 3; y < 14; y += 3)
        painter.fillRect(3, y, 8, 1, Qt::white);
    painter.end();
    InkSymbol symbol;
    symbol.text = text;
    symbol.unit = symbol.box = QRect(x, 7, image.width(), image.height());
    symbol.confidence = 99;
    for (int y = 0; y < image.height(); ++y)
        symbol.glyph.insert(symbol.glyph.end(), image.constScanLine(y),
                            image.constScanLine(y) + image.width());
    return symbol;
}

QString keptOf(std::vector<InkSymbol> symbols)
{
    PictureGlyphs(GlyphNet::trained()).erase(symbols, line());
    return spacedTextOf(symbols);
}

std::vector<InkSymbol> label(int x)
{
    std::vector<InkSymbol> symbols{
        symbolOf("O", {x, 10}, letterO), symbolOf("K", {x + 10, 10}, letterK),
        symbolOf("N", {x + 20, 10}, letterN), symbolOf("O", {x + 30, 10}, letterO),
        symbolOf("K", {x + 40, 10}, letterK)};
    symbols.front().startsWord = true;
    return symbols;
}

} // namespace

class TestPictureGlyphs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void namesLettersAndIcons()
    {
        const GlyphNet &net = GlyphNet::trained();
        const auto likeliest = [&](const InkSymbol &symbol) {
            const GlyphNet::Answer answer =
                net.classify(glyphView(symbol.glyph, symbol.unit, line()));
            return int(std::max_element(answer.begin(), answer.end()) - answer.begin());
        };
        QCOMPARE(likeliest(symbolOf("N", {0, 10}, letterN)), 'N' - '!');
        QCOMPARE(likeliest(symbolOf("K", {0, 10}, letterK)), 'K' - '!');
        QCOMPARE(likeliest(sheet("E", 0)), GlyphNet::picture);
    }

    void erasesIconReadAsWord()
    {
        std::vector<InkSymbol> symbols{sheet("E", 0)};
        symbols.front().startsWord = true;
        QCOMPARE(keptOf(symbols), QString());
        const auto words = label(24);
        symbols.insert(symbols.end(), words.begin(), words.end());
        QCOMPARE(keptOf(symbols), QStringLiteral(" OKNOK"));
    }

    void erasesIconReadIntoItsLabel()
    {
        std::vector<InkSymbol> symbols{sheet("@", 0)};
        symbols.front().startsWord = true;
        auto words = label(18);
        words.front().startsWord = false;
        symbols.insert(symbols.end(), words.begin(), words.end());
        QCOMPARE(keptOf(symbols), QStringLiteral(" OKNOK"));
    }

    void keepsLetters()
    {
        QCOMPARE(keptOf(label(0)), QStringLiteral(" OKNOK"));
        std::vector<InkSymbol> ok = label(0);
        ok.resize(2);
        QCOMPARE(keptOf(ok), QStringLiteral(" OK"));
    }

    void leavesScriptsAloneThatItHasNotSeen()
    {
        std::vector<InkSymbol> symbols{sheet(QStringLiteral("\u0561"), 0)};
        symbols.front().startsWord = true;
        QCOMPARE(keptOf(symbols), QStringLiteral(" \u0561"));
    }

    void keepsItsWeightsInBytes()
    {
        GlyphNet::Layers layers = GlyphNet::emptyLayers();
        layers[0].weights[3] = 0.5F;
        layers[4].biases[7] = -2;
        std::vector<std::uint8_t> bytes = GlyphNet::bytesOf(layers);
        QVERIFY(bytes.size() < 120000);
        const auto back = GlyphNet::layersFrom(bytes);
        QVERIFY(back);
        QCOMPARE((*back)[0].weights[3], 0.5F);
        QCOMPARE((*back)[4].biases[7], -2.0F);
        bytes.pop_back();
        QVERIFY(!GlyphNet::layersFrom(bytes));
    }
};

QTEST_APPLESS_MAIN(TestPictureGlyphs)
#include "tst_PictureGlyphs.moc"
