// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/EngineWords.h"

#include <QRegularExpression>
#include <QTest>

#include <algorithm>

using namespace tovek;

namespace {

LineStrip plainStrip()
{
    LineStrip strip;
    strip.left = 0;
    strip.scale = 1;
    return strip;
}

/// One symbol a character, each 8 wide, from `left` on; words from right to left go down.
std::vector<EngineSymbol> word(const QString &text, double left, double step = 10)
{
    std::vector<EngineSymbol> symbols;
    for (const QChar c : text) {
        symbols.push_back({QString(c), left, left + 8, 90, symbols.empty()});
        left += step;
    }
    return symbols;
}

std::vector<EngineSymbol> line(const std::vector<std::vector<EngineSymbol>> &words)
{
    std::vector<EngineSymbol> symbols;
    for (const auto &one : words)
        symbols.insert(symbols.end(), one.begin(), one.end());
    return symbols;
}

QStringList textsOf(const std::vector<EngineWord> &words)
{
    QStringList texts;
    for (const EngineWord &one : words)
        texts += one.text;
    return texts;
}

} // namespace

class TestEngineWords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void standFromLeftToRight()
    {
        // As they are read: the first word is the rightmost.
        const auto words =
            engineWords(line({word("אבג", 120, -10), word("דה", 60, -10)}), plainStrip());
        QCOMPARE(textsOf(words), (QStringList{"דה", "אבג"}));
        QCOMPARE(words.back().left, 100.0);
        QCOMPARE(words.back().right, 128.0);
    }
    void doNotReachToTheLinesEnd()
    {
        // What the engine says of the first letter of a line's last word from right to left.
        auto symbols = line({word("אבג", 120, -10), word("דהו", 60, -10)});
        symbols[3].right = 128;
        QCOMPARE(textsOf(engineWords(symbols, plainStrip())), (QStringList{"דהו", "אבג"}));
    }
    void keepTheEnginesOrderFromLeftToRight()
    {
        auto symbols = line({word("小麦", 30), word("粉", 20)});
        QCOMPARE(textsOf(engineWords(symbols, plainStrip())), (QStringList{"小麦", "粉"}));
    }
    void haveTheirMarks_data()
    {
        QTest::addColumn<QStringList>("given");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("combining mark")
            << QStringList{"ท", "\u0E35", "ง"} << QStringList{"ท\u0E35", "ง"};
        QTest::newRow("full stop of ideographs")
            << QStringList{"粉", "。", "卵"} << QStringList{"粉。", "卵"};
        QTest::newRow("opening bracket")
            << QStringList{"粉", "「", "卵", "」"} << QStringList{"粉", "「卵」"};
        QTest::newRow("dash between Hebrew words")
            << QStringList{"א", "-", "ב"} << QStringList{"א", "-", "ב"};
    }
    void haveTheirMarks()
    {
        QFETCH(QStringList, given);
        const bool isReversed = given.front() == QStringLiteral("א");
        std::vector<EngineSymbol> symbols;
        for (qsizetype i = 0; i < given.size(); ++i) {
            const double left = double(isReversed ? given.size() - i : i) * 20;
            symbols.push_back({given.at(i), left, left + 10, 90, true});
        }
        QStringList texts = textsOf(engineWords(symbols, plainStrip()));
        if (isReversed)
            std::reverse(texts.begin(), texts.end());
        QTEST(texts, "expected");
    }

    void takeTheInkUpToTheBlank()
    {
        // The engine places the blank five pixels early.
        std::vector<EngineWord> words{{"אב", 0, 30}, {"גד", 38, 70}};
        const std::vector<QRect> ink{
            {0, 0, 10, 12}, {12, 0, 10, 12}, {24, 0, 14, 12}, {46, 0, 10, 12}, {58, 0, 14, 12}};
        takeInk(words, ink, 12);
        QCOMPARE(words[0].box, QRect(0, 0, 38, 12));
        QCOMPARE(words[1].box, QRect(46, 0, 26, 12));
    }
    void leaveFarInkAlone()
    {
        std::vector<EngineWord> words{{"אב", 40, 70}};
        takeInk(words, {{0, 0, 10, 12}, {40, 0, 30, 12}}, 12);
        QCOMPARE(words[0].box, QRect(40, 0, 30, 12));
    }
    void shareOnePiece()
    {
        std::vector<EngineWord> words{{"अ", 0, 30}, {"ब", 40, 70}};
        takeInk(words, {{0, 0, 71, 12}}, 12);
        QCOMPARE(words[0].box, QRect(0, 0, 31, 12));
        QCOMPARE(words[1].box, QRect(40, 0, 31, 12));
    }
    void joinWhatNoBlankDivides()
    {
        std::vector<EngineWord> words{{"파", 0, 10, 90, {0, 0, 10, 10}},
                                      {"일", 11, 20, 90, {11, 0, 10, 10}},
                                      {"은", 26, 36, 90, {26, 0, 10, 10}}};
        joinAtBlanks(words, 10);
        QCOMPARE(textsOf(words), (QStringList{"파일", "은"}));
        QCOMPARE(words.front().box, QRect(0, 0, 21, 10));
    }
    void orderLatinWordsAsTheyStand()
    {
        // In a line that the engine takes for one from right to left.
        QString text;
        for (const EngineSymbol &symbol : inVisualOrder(line({word("Z", 60), word("Ctrl", 0)})))
            text += symbol.text;
        QCOMPARE(text, QStringLiteral("CtrlZ"));
        QVERIFY(inVisualOrder({}).empty());
    }
};

QTEST_APPLESS_MAIN(TestEngineWords)
#include "tst_EngineWords.moc"
