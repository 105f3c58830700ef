// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeTextRecognizer.h"
#include "text/OCRService.h"
#include "text/ObservedWords.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <cstdio>
#include <unistd.h>

using namespace tovek;

namespace {

Image picture(int width, int height, double scale = 1)
{
    QImage bitmap(width, height, QImage::Format_RGB32);
    bitmap.fill(Qt::white);
    return {bitmap, {width / scale, height / scale}};
}

QStringList textsOf(const std::vector<TextRegion> &regions)
{
    QStringList texts;
    for (const TextRegion &region : regions)
        texts += region.text;
    return texts;
}

/// What a block writes to standard output.
template <typename Block>
QByteArray outputOf(Block block)
{
    std::fflush(stdout);
    FILE *file = std::tmpfile();
    const int saved = ::dup(1);
    ::dup2(::fileno(file), 1);
    block();
    std::fflush(stdout);
    ::dup2(saved, 1);
    ::close(saved);
    std::rewind(file);
    QByteArray text(4096, '\0');
    text.resize(qsizetype(std::fread(text.data(), 1, std::size_t(text.size()), file)));
    std::fclose(file);
    return text;
}

} // namespace

class TestOCRService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void splitsLinesIntoWords_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("one word") << "word" << QStringList{"word"};
        QTest::newRow("blanks") << "two  words" << QStringList{"two", "words"};
        QTest::newRow("a tab") << "two\twords" << QStringList{"two", "words"};
        QTest::newRow("blanks around") << "  in between " << QStringList{"in", "between"};
        QTest::newRow("a non-breaking blank") << QString("10\u00a0px") << QStringList{"10"};
        QTest::newRow("blanks only") << "   " << QStringList{};
        QTest::newRow("nothing") << "" << QStringList{};
    }
    void splitsLinesIntoWords()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, expected);
        TextObservation line = FakeTextRecognizer::lineOf(text);
        if (text.contains(QChar(0xa0)))
            line.ranges = {{0, 2, QRectF(0, 0, 20, 20)}};
        QCOMPARE(textsOf(wordsOf(line, {200, 40})), expected);
    }

    void givesRepeatedWordsTheirOwnPlaces()
    {
        const auto words = wordsOf(FakeTextRecognizer::lineOf("to be or not to be"), {180, 20});
        QCOMPARE(textsOf(words), (QStringList{"to", "be", "or", "not", "to", "be"}));
        QCOMPARE(words[0].boundingBox.x, 0.0);
        QCOMPARE(words[4].boundingBox.x, 130.0 / 180);
        QCOMPARE(words[1].boundingBox.x, 30.0 / 180);
        QCOMPARE(words[5].boundingBox.x, 160.0 / 180);
    }

    void findsAWordInsideALaterOneOnlyAfterItsPlace()
    {
        const auto words = wordsOf(FakeTextRecognizer::lineOf("into to"), {70, 20});
        QCOMPARE(words[1].boundingBox.x, 50.0 / 70);
    }

    void turnsPixelsIntoNormalisedBoxesWithYUp()
    {
        const auto words = wordsOf(FakeTextRecognizer::lineOf("word", 10), {80, 100});
        QVERIFY((words.front().boundingBox == Rect{0, 0.7, 0.5, 0.2}));
    }

    void leavesOutAWordWithoutABox()
    {
        TextObservation line = FakeTextRecognizer::lineOf("one two three");
        line.ranges.erase(line.ranges.begin() + 1);
        QCOMPARE(textsOf(wordsOf(line, {200, 20})), (QStringList{"one", "three"}));
    }

    void recognisesTheLinesInTheirOrder()
    {
        FakeTextRecognizer recognizer;
        recognizer.result.observations = {FakeTextRecognizer::lineOf("second line", 20),
                                          FakeTextRecognizer::lineOf("first", 0)};
        OCRService service(recognizer);
        const auto regions = service.recognizeText(picture(200, 40, 2)).result();
        QCOMPARE(textsOf(regions), (QStringList{"second", "line", "first"}));
        QCOMPARE(recognizer.images.front().size(), QSize(200, 40));
        QCOMPARE(recognizer.scales.front(), 2.0);
    }

    void tellsWhatIsMissingEvenAfterTheWords()
    {
        FakeTextRecognizer recognizer;
        recognizer.hold();
        OCRService service(recognizer);
        QStringList packages;
        const auto future = service.recognizeText(
            picture(20, 20), {}, [&](const MissingModel &model) { packages += model.package; });
        recognizer.miss({"tesseract-ocr-deu", "your language"});
        recognizer.finish();
        QVERIFY(future.isFinished());
        recognizer.miss({"tesseract-ocr-ara", "Arabic"});
        QCOMPARE(packages, (QStringList{"tesseract-ocr-deu", "tesseract-ocr-ara"}));
    }

    void asksNobodyAboutAnEmptyImage()
    {
        FakeTextRecognizer recognizer;
        OCRService service(recognizer);
        QVERIFY(service.recognizeText({{}, {10, 10}}).result().empty());
        QVERIFY(recognizer.images.empty());
    }

    void logsAFailureOnceAndGivesNothing()
    {
        FakeTextRecognizer recognizer;
        recognizer.result.error = "no model";
        OCRService service(recognizer);
        const QByteArray output =
            outputOf([&] { QVERIFY(service.recognizeText(picture(20, 20)).result().empty()); });
        QCOMPARE(output, QByteArray("OCR failed: no model\n"));
    }

    void cancelsTheRecognitionWithItsOwnFuture()
    {
        FakeTextRecognizer recognizer;
        recognizer.hold();
        OCRService service(recognizer);
        auto future = service.recognizeText(picture(20, 20));
        QFuture<RecognitionResult> inner = recognizer.underWayFuture();
        future.cancel();
        QTRY_VERIFY(inner.isCanceled());
        const QByteArray output = outputOf([&] { recognizer.finish(); });
        QCOMPARE(output, QByteArray());
        QCOMPARE(future.resultCount(), 0);
    }

    void tellsWordsWhileOthersAreStillRead()
    {
        FakeTextRecognizer recognizer;
        recognizer.hold();
        OCRService service(recognizer);
        QStringList told;
        auto future = service.recognizeText(picture(200, 40), [&](const auto &regions) {
            told += textsOf(regions).join(' ');
            QCOMPARE(regions.front().boundingBox.y, 0.5);
        });
        recognizer.tell({FakeTextRecognizer::lineOf("to be"), FakeTextRecognizer::lineOf("or")});
        recognizer.tell({FakeTextRecognizer::lineOf("not")});
        QCOMPARE(told, (QStringList{"to be or", "not"}));
        QVERIFY(!future.isFinished());
        recognizer.result.observations = {FakeTextRecognizer::lineOf("to be or not")};
        recognizer.finish();
        QCOMPARE(textsOf(future.result()), (QStringList{"to", "be", "or", "not"}));
    }

    void preparesTheRecogniser()
    {
        FakeTextRecognizer recognizer;
        OCRService(recognizer).prepare();
        QCOMPARE(recognizer.preparations, 1);
    }
};

QTEST_GUILESS_MAIN(TestOCRService)
#include "tst_OCRService.moc"
