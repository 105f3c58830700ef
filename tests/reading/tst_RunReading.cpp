// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/InkSegments.h"
#include "reading/Plausibility.h"
#include "reading/ReadWords.h"
#include "reading/SymbolText.h"

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

    void takesTheFootOfACyrillicLetterForNoDot()
    {
        const std::vector<QRect> ink{{0, 3, 7, 7}, {10, 8, 2, 2}, {14, 3, 7, 7}};
        const auto read = [&](const QString &a, const QString &b) {
            return textOf(alignedSymbols({symbol(a, 0, 7, true), symbol(b, 14, 21)}, plainStrip(),
                                         ink, metrics));
        };
        QCOMPARE(read("a", "n"), QStringLiteral("a.n"));
        QCOMPARE(read("м", "л"), QStringLiteral("мл"));
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
        QTest::newRow("letter") << "a" << QRect(0, 3, 7, 7) << 93.0 << true;
        QTest::newRow("descender") << "g" << QRect(0, 3, 7, 10) << 93.0 << true;
        QTest::newRow("icon") << "Q" << QRect(0, -3, 16, 16) << 90.0 << false;
        QTest::newRow("bracket") << "(" << QRect(0, -1, 4, 14) << 90.0 << true;
        QTest::newRow("arrow read as a letter") << "v" << QRect(0, 3, 6, 4) << 90.0 << false;
        QTest::newRow("dash in the same place") << "-" << QRect(0, 5, 6, 1) << 90.0 << true;
        QTest::newRow("button read as a letter") << "B" << QRect(0, 0, 7, 10) << 91.0 << false;
        QTest::newRow("chevron that points down") << "v" << QRect(0, 3, 12, 7) << 99.0 << false;
        QTest::newRow("chevron that points to the side")
            << ">" << QRect(0, 0, 6, 10) << 99.0 << false;
        QTest::newRow("greater than") << ">" << QRect(0, 2, 7, 7) << 99.0 << true;
        QTest::newRow("round icon") << "@" << QRect(0, 0, 11, 11) << 96.0 << false;
        QTest::newRow("at sign") << "@" << QRect(0, 0, 11, 11) << 99.0 << true;
        QTest::newRow("two dashes") << "--" << QRect(0, 5, 12, 1) << 70.0 << true;
        QTest::newRow("dot named by its shape") << "." << QRect(0, 8, 2, 2) << 50.0 << true;
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

    void measuresShortWordsByTheLongOnesBesideThem_data()
    {
        QTest::addColumn<double>("longWord");
        QTest::addColumn<bool>("isKept");
        QTest::newRow("icon beside sure text") << 99.0 << false;
        QTest::newRow("word in blurred text") << 93.0 << true;
    }
    void measuresShortWordsByTheLongOnesBesideThem()
    {
        QFETCH(double, longWord);
        QFETCH(bool, isKept);
        std::vector<ReadWord> words{{"a2", QRect(0, 0, 16, 10), 92},
                                    {"Settings", QRect(24, 0, 60, 10), longWord}};
        dropPictures(words, metrics);
        QCOMPARE(words.size() == 2, isKept);
    }

    void dropsShortWordsThatLieOnOtherLines()
    {
        // The strokes in the icon of a document, each a line of its own, and a label beside it.
        std::vector<std::vector<ReadWord>> lines{{{"-", QRect(0, 0, 12, 16), 98}},
                                                 {{"=", QRect(0, 4, 12, 16), 98}},
                                                 {{"notes", QRect(20, 2, 40, 16), 98}},
                                                 {{"a", QRect(0, 18, 12, 16), 98}}};
        dropCrowded(lines);
        QCOMPARE(lines.size(), std::size_t(2));
        QCOMPARE(lines[0].front().text, QStringLiteral("notes"));
        QCOMPARE(lines[1].front().text, QStringLiteral("a"));
    }

    void keepsShortWordsOfIdeographs()
    {
        std::vector<std::vector<ReadWord>> lines{{{"小麦", QRect(0, 0, 24, 24), 98}},
                                                 {{"粉", QRect(0, 12, 12, 24), 98}}};
        dropCrowded(lines);
        QCOMPARE(lines.size(), std::size_t(2));
        const QRect box(0, 0, 24, 24);
        QVERIFY(!isPictureRun({box, {{box, 300, 255}}}, lines.front(), metrics, 10));
    }

    void sparesTheEngineSpecks_data()
    {
        QTest::addColumn<std::vector<QRect>>("patches");
        QTest::addColumn<bool>("expected");
        const auto row = [](int count, QSize size, int step) {
            std::vector<QRect> patches;
            for (int i = 0; i < count; ++i)
                patches.push_back({QPoint(i * step, 0), size});
            return patches;
        };
        QTest::newRow("dotted frame") << row(20, {1, 1}, 2) << true;
        QTest::newRow("grip of two rows") << std::vector{QRect(0, 0, 2, 2), QRect(4, 0, 2, 2),
                                                         QRect(0, 5, 2, 2), QRect(4, 5, 2, 2)}
                                          << true;
        QTest::newRow("speck") << row(1, {2, 2}, 1) << true;
        QTest::newRow("row of points") << row(12, {6, 6}, 10) << true;
        QTest::newRow("few points") << row(3, {6, 6}, 10) << false;
        QTest::newRow("dashes") << row(20, {4, 1}, 6) << false;
        QTest::newRow("asterisk in small text") << row(1, {4, 4}, 1) << false;
        QTest::newRow("equals sign") << std::vector{QRect(0, 0, 6, 1), QRect(0, 3, 6, 1)} << false;
        QTest::newRow("lowest letters") << row(4, {4, 5}, 6) << false;
        QTest::newRow("letters") << row(12, {5, 7}, 8) << false;
    }
    void sparesTheEngineSpecks()
    {
        QFETCH(std::vector<QRect>, patches);
        TextRun run;
        for (const QRect &box : patches) {
            run.patches.push_back({box, box.width() * box.height(), 255});
            run.box |= box;
        }
        QTEST(isSpecks(run), "expected");
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
        QTest::newRow("low letters") << QRect(0, 0, 26, 5) << "none" << false;
        QTest::newRow("low speck") << QRect(0, 0, 5, 5) << "x" << true;
        QTest::newRow("heading") << QRect(0, 0, 80, 24) << "Title" << false;
    }
    void tellsARowOfButtons()
    {
        const QRect box(0, 0, 100, 24);
        std::vector<ReadWord> words{{"B", QRect(0, 0, 24, 24), 98},
                                    {"a", QRect(30, 0, 24, 24), 97}};
        QVERIFY(isPictureRun({box, {{box, 900, 255}}}, words, metrics, 10));
        words.push_back({"Size", QRect(60, 0, 40, 24), 99});
        QVERIFY(!isPictureRun({box, {{box, 900, 255}}}, words, metrics, 10));
    }
    void tellsRunsThatAreNoText()
    {
        QFETCH(QRect, box);
        QFETCH(QString, text);
        const TextRun run{box, {{box, box.width() * box.height(), 255}}};
        QTEST(isPictureRun(run, {{text, box, 95}}, metrics, 10), "expected");
    }
};

QTEST_APPLESS_MAIN(TestRunReading)
#include "tst_RunReading.moc"
