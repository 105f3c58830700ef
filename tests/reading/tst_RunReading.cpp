// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/InkSegments.h"
#include "reading/Plausibility.h"
#include "reading/ReadWords.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

/// A line of capitals 10 high, baseline at 10.
constexpr LetterMetrics metrics{10, 10, 7, true};

LineStrip plainStrip()
{
    LineStrip strip;
    strip.left = 0;
    strip.scale = 1;
    return strip;
}

EngineSymbol symbol(const QString &text, double left, double right, bool startsWord = false)
{
    return {text, left, right, 90, startsWord};
}

QString textOf(const std::vector<InkSymbol> &symbols)
{
    QString text;
    for (const InkSymbol &one : symbols)
        text += one.text;
    return text;
}

} // namespace

class TestRunReading : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void keepsTheDotWithItsLetter()
    {
        InkMap ink{{10, 8}, std::vector<std::uint8_t>(80, 0)};
        for (int y : {0, 3, 4, 5, 6, 7})
            ink.contrast[std::size_t(y) * 10 + 2] = 255;
        for (int y = 3; y < 8; ++y)
            ink.contrast[std::size_t(y) * 10 + 6] = 255;
        TextRun run{QRect(100, 50, 10, 8), {}};
        QCOMPARE(inkSegments(ink, run), (std::vector{QRect(102, 50, 1, 8), QRect(106, 53, 1, 5)}));
    }

    void namesInkThatWasPassedOver_data()
    {
        QTest::addColumn<QRect>("passedOver");
        QTest::addColumn<QString>("expected");
        QTest::newRow("dot") << QRect(9, 8, 2, 2) << "a.b";
        QTest::newRow("dash") << QRect(9, 5, 4, 1) << "a-b";
        QTest::newRow("underscore") << QRect(9, 11, 6, 1) << "a_b";
        QTest::newRow("two underscores") << QRect(9, 11, 14, 1) << "a__b";
        QTest::newRow("no mark") << QRect(9, 2, 5, 5) << "ab";
    }
    void namesInkThatWasPassedOver()
    {
        QFETCH(QRect, passedOver);
        const int after = passedOver.right() + 3;
        const auto symbols =
            alignedSymbols({symbol("a", 0, 7, true), symbol("b", after, after + 7)}, plainStrip(),
                           {QRect(0, 3, 7, 7), passedOver, QRect(after, 0, 7, 10)}, metrics);
        QTEST(textOf(symbols), "expected");
    }

    void countsDashesByTheirInk()
    {
        const auto symbols =
            alignedSymbols({symbol("-", 0, 9, true), symbol("a", 12, 18)}, plainStrip(),
                           {QRect(0, 5, 4, 1), QRect(6, 5, 4, 1), QRect(12, 3, 6, 7)}, metrics);
        QCOMPARE(textOf(symbols), QString("--a"));
    }

    void readsOneCharacterIntoThinInk()
    {
        const auto symbols = alignedSymbols({symbol("1", 0, 1, true), symbol("l", 1, 2)},
                                            plainStrip(), {QRect(0, 0, 2, 10)}, metrics);
        QCOMPARE(symbols.size(), std::size_t(1));
    }

    void leavesTheTildeThatTheEngineRead_data()
    {
        QTest::addColumn<QRect>("ink");
        QTest::addColumn<QString>("expected");
        QTest::newRow("a wave") << QRect(0, 4, 6, 2) << "~";
        QTest::newRow("two hyphens") << QRect(0, 5, 9, 2) << "-";
        QTest::newRow("a straight line") << QRect(0, 5, 6, 1) << "-";
    }
    void leavesTheTildeThatTheEngineRead()
    {
        QFETCH(QRect, ink);
        const auto symbols =
            alignedSymbols({symbol("~", 0, ink.width(), true)}, plainStrip(), {ink}, metrics);
        QTEST(textOf(symbols), "expected");
    }

    void dividesTouchingLetters()
    {
        const auto symbols =
            alignedSymbols({symbol("a", 0, 7, true), symbol("b", 7, 14), symbol("c", 16, 22)},
                           plainStrip(), {QRect(0, 0, 14, 10), QRect(16, 3, 6, 7)}, metrics);
        QCOMPARE(textOf(symbols), QString("abc"));
        QCOMPARE(symbols[0].box, QRect(0, 0, 7, 10));
        QCOMPARE(symbols[1].box, QRect(7, 0, 7, 10));
        QCOMPARE(symbols[2].box, QRect(16, 3, 6, 7));
    }

    void putsWordsTogether()
    {
        const auto words = readWords({{"a", QRect(0, 3, 7, 7), 80, true, 1},
                                      {"b", QRect(9, 0, 7, 10), 90, false, 1},
                                      {"c", QRect(24, 3, 7, 7), 70, true, 1}});
        QCOMPARE(words,
                 (std::vector{ReadWord{"ab", QRect(0, 0, 16, 10), 85},
                              ReadWord{"c", QRect(24, 3, 7, 7), 70}}));
    }

    void givesTheWordsOfALineOneHeight()
    {
        std::vector<ReadWord> words{{"one", QRect(0, 23, 20, 7), 90},
                                    {"gap", QRect(30, 23, 20, 10), 90},
                                    {"-", QRect(60, 26, 5, 1), 90}};
        LetterMetrics lower = metrics;
        lower.baseline = 30;
        makeLineHigh(words, lower, {200, 200});
        QCOMPARE(words[0].box, QRect(0, 18, 20, 16));
        QCOMPARE(words[1].box, QRect(30, 18, 20, 16));
        QCOMPARE(words[2].box, QRect(58, 18, 9, 16)); // a mark's cell is wider than its ink
        makeLineHigh(words, lower, {200, 32});
        QCOMPARE(words[0].box.bottom(), 31);
    }

    void dropsWhatIsNoText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QRect>("box");
        QTest::addColumn<double>("confidence");
        QTest::addColumn<bool>("isKept");
        QTest::newRow("letter") << "a" << QRect(0, 3, 7, 7) << 90.0 << true;
        QTest::newRow("descender") << "g" << QRect(0, 3, 7, 10) << 90.0 << true;
        QTest::newRow("icon") << "Q" << QRect(0, -3, 16, 16) << 90.0 << false;
        QTest::newRow("bracket") << "(" << QRect(0, -1, 4, 14) << 90.0 << true;
        QTest::newRow("arrow read as a letter") << "v" << QRect(0, 3, 6, 4) << 90.0 << false;
        QTest::newRow("dash in the same place") << "-" << QRect(0, 5, 6, 1) << 90.0 << true;
        QTest::newRow("noise") << "x" << QRect(0, 3, 7, 7) << 10.0 << false;
        QTest::newRow("long word, little confidence")
            << "noises" << QRect(0, 3, 40, 7) << 10.0 << true;
    }
    void dropsWhatIsNoText()
    {
        QFETCH(QString, text);
        QFETCH(QRect, box);
        QFETCH(double, confidence);
        QFETCH(bool, isKept);
        std::vector<ReadWord> words{{text, box, confidence}};
        dropPictures(words, metrics);
        QCOMPARE(!words.empty(), isKept);
    }

    void tellsRunsThatAreNoText_data()
    {
        QTest::addColumn<QRect>("box");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("expected");
        QTest::newRow("corner of a frame") << QRect(0, 0, 3, 2) << "_" << true;
        QTest::newRow("dash") << QRect(0, 0, 4, 1) << "-" << false;
        QTest::newRow("asterisk") << QRect(0, 0, 5, 5) << "*" << false;
        QTest::newRow("speck like an asterisk") << QRect(0, 0, 2, 2) << "*" << true;
        QTest::newRow("speck") << QRect(0, 0, 3, 3) << "." << true;
        QTest::newRow("side of a frame") << QRect(0, 0, 1, 22) << "|" << true;
        QTest::newRow("small letter") << QRect(0, 0, 5, 6) << "x" << false;
        QTest::newRow("digit") << QRect(0, 0, 6, 10) << "7" << false;
        QTest::newRow("icon") << QRect(0, 0, 24, 24) << "@" << true;
        QTest::newRow("heading") << QRect(0, 0, 80, 24) << "Title" << false;
    }
    void tellsRunsThatAreNoText()
    {
        QFETCH(QRect, box);
        QFETCH(QString, text);
        const TextRun run{box, {{box, box.width() * box.height(), 255}}};
        QTEST(isPictureRun(run, {{text, box, 90}}, metrics, 10), "expected");
    }
};

QTEST_APPLESS_MAIN(TestRunReading)
#include "tst_RunReading.moc"
