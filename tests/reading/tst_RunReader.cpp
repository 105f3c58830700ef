// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/RunReader.h"

#include <QRegularExpression>
#include <QTest>

#include <array>

using namespace tovek;

namespace {

using Models = LineEngine::Models;

/// Gives answers that were put there, in parts of the strip's width.
class ToldEngine : public LineEngine
{
public:
    struct Answer
    {
        QString text;
        double left, right;
    };
    using Answers = std::vector<Answer>;

    ToldEngine(Answers all, Answers english, Answers native, double confidence = 99)
        : m_answers{std::move(all), std::move(english), std::move(native)}
        , m_confidence(confidence)
    {
    }
    std::optional<std::vector<EngineSymbol>> read(const LineStrip &strip, Models models) override
    {
        asked.push_back(models);
        std::vector<EngineSymbol> symbols;
        const double confidence = models == Models::all ? m_confidence : 99;
        for (const auto &[text, left, right] : m_answers[std::size_t(models)]) {
            const double step = (right - left) / double(text.size()) * strip.width;
            for (qsizetype i = 0; i < text.size(); ++i)
                symbols.push_back({text.mid(i, 1), left * strip.width + double(i) * step,
                                   left * strip.width + double(i + 1) * step, confidence, i == 0});
        }
        return symbols;
    }
    bool readsByWords() const override { return isForeign; }

    std::vector<Models> asked;
    bool isForeign = true;

private:
    std::array<Answers, 3> m_answers;
    double m_confidence;
};

/// Six letters in three words of two: blocks of 8 by 10 with gaps of 2, and of 10 between words.
struct Line
{
    InkMap map{{200, 20}, std::vector<std::uint8_t>(std::size_t(200) * 20, 0)};
    TextRun run;
    LetterMetrics metrics{15, 10, 7, true};

    Line()
    {
        for (const int left : {0, 10, 28, 38, 56, 66}) {
            for (int y = 5; y < 15; ++y) {
                for (int x = left; x < left + 8; ++x)
                    map.contrast[std::size_t(y) * 200 + x] = 255;
            }
            run.patches.push_back({QRect(left, 5, 8, 10), 80, 255});
            run.box |= run.patches.back().box;
        }
    }
};

QStringList wordsOf(const std::vector<ReadPiece> &pieces)
{
    QStringList texts;
    for (const ReadPiece &piece : pieces) {
        for (const ReadWord &word : piece.words)
            texts += word.text;
        QString letters;
        for (const InkSymbol &symbol : piece.symbols)
            letters += symbol.text;
        if (!letters.isEmpty())
            texts += letters;
    }
    return texts;
}

} // namespace

class TestRunReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void readsLettersOnceWithoutOtherScripts()
    {
        Line line;
        ToldEngine engine({{"ab", 0.1, 0.9}}, {}, {}, 50);
        engine.isForeign = false;
        const auto pieces = readRun(line.map, line.run, line.metrics, engine);
        QCOMPARE(engine.asked, (std::vector{Models::all}));
        QCOMPARE(pieces.value().size(), std::size_t(1));
        QVERIFY(pieces->front().words.empty());
    }
    void keepsLatinInPlaceInALineFromRightToLeft()
    {
        Line line;
        const ToldEngine::Answers words{{"אב", 0.72, 0.95}, {"xx", 0.38, 0.62}, {"גד", 0.05, 0.28}};
        ToldEngine engine(words, {{"F1", 0.2, 0.8}}, {});
        const auto pieces = readRun(line.map, line.run, line.metrics, engine);
        QCOMPARE(wordsOf(pieces.value()), (QStringList{"אב", "F1", "גד"}));
        QCOMPARE(pieces->front().words.front().box, QRect(56, 5, 18, 10));
        QVERIFY(pieces->at(1).isInRightToLeft);
        QCOMPARE(engine.asked.back(), Models::english);
    }
    void readsUnsureLettersOfAnotherAlphabetInEnglish()
    {
        Line line;
        ToldEngine engine({{"сиіно", 0.1, 0.9}}, {{"Ctrl+Q", 0.1, 0.9}}, {}, 90);
        engine.isForeign = false;
        const auto pieces = readRun(line.map, line.run, line.metrics, engine);
        QCOMPARE(wordsOf(pieces.value()), QStringList{"Ctrl+Q"});
    }
    void looksAgainAtUnsureLetters_data()
    {
        QTest::addColumn<double>("confidence");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("unsure") << 70.0 << QStringList{"אבג"};
        QTest::newRow("sure") << 99.0 << QStringList{"abc"};
    }
    void looksAgainAtUnsureLetters()
    {
        QFETCH(double, confidence);
        Line line;
        const ToldEngine::Answers latin{{"abc", 0.1, 0.9}};
        ToldEngine engine(latin, latin, {{"אבג", 0.1, 0.9}}, confidence);
        const auto pieces = readRun(line.map, line.run, line.metrics, engine);
        QTEST(wordsOf(pieces.value()), "expected");
    }
};

QTEST_APPLESS_MAIN(TestRunReader)
#include "tst_RunReader.moc"
