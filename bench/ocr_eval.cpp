// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Recognises the pictures named on the command line, one after the other, and prints one JSON line
// a picture: its path, the words with their boxes in pixels, and the wall time in milliseconds.
// The first picture is read twice and the first time not counted: the engines are warm then, as
// they are in the resident program from the second capture on. "--cold" counts it. "first" is the
// time of the first words where a large picture's are told in parts.
// "--cache FILE" keeps what the engine answered for each strip, so that changes after the engine
// are judged in seconds; no times are printed then, but the runs with what the engine read.

#include "foundation/WhenReady.h"
#include "platform/linux/TesseractRecognizer.h"
#include "platform/linux/ocr/RecognitionModels.h"
#include "reading/PageReading.h"
#include "reading/RunReader.h"
#include "reading/fonts/GridVotes.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDataStream>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

#include <cstdio>

using namespace tovek;

namespace {

QJsonArray boxOf(const QRectF &box)
{
    return {box.x(), box.y(), box.width(), box.height()};
}

QJsonArray wordsOf(const RecognitionResult &result)
{
    QJsonArray words;
    for (const TextObservation &line : result.observations) {
        for (const RecognizedRange &range : line.ranges)
            words.append(QJsonObject{{"text", line.text.mid(range.from, range.length)},
                                     {"box", boxOf(range.box)}});
    }
    return words;
}

void print(const QJsonObject &line)
{
    std::printf("%s\n", QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
}

/// An engine that asks the real one only for strips that it has not seen.
class CachingEngine : public LineEngine
{
public:
    explicit CachingEngine(const QString &path) : m_path(path)
    {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly)) {
            QDataStream in(&file);
            in >> m_known;
        }
    }
    ~CachingEngine() override
    {
        QFile file(m_path);
        if (m_engine && file.open(QIODevice::WriteOnly)) {
            QDataStream out(&file);
            out << m_known;
        }
    }
    CachingEngine(const CachingEngine &) = delete;
    CachingEngine &operator=(const CachingEngine &) = delete;

    std::optional<std::vector<EngineSymbol>> read(const LineStrip &strip, Models models) override
    {
        QCryptographicHash hash(QCryptographicHash::Md5);
        hash.addData(models == Models::english      ? QByteArray("eng")
                         : models == Models::native ? "native " + m_languages
                                                    : m_languages);
        hash.addData(
            {reinterpret_cast<const char *>(strip.grey.data()), qsizetype(strip.grey.size())});
        QByteArray &known = m_known[hash.result()];
        if (known.isEmpty())
            known = ask(strip, models);
        std::vector<EngineSymbol> symbols;
        QDataStream in(known);
        for (quint32 left = 0, count = (in >> left, left); count > 0; --count) {
            EngineSymbol symbol;
            in >> symbol.text >> symbol.left >> symbol.right >> symbol.confidence
                >> symbol.startsWord;
            symbols.push_back(symbol);
        }
        return symbols;
    }

    bool readsByWords() const override
    {
        return readByWords(QString::fromLatin1(m_languages).split('+'));
    }

private:
    QByteArray ask(const LineStrip &strip, Models models)
    {
        if (!m_engine)
            m_engine = EngineProcess::create(
                {QFile::encodeName(QCoreApplication::applicationDirPath() + "/tovek-ocr"),
                 QFile::encodeName(modelFolder(QCoreApplication::applicationDirPath())),
                 m_languages});
        QByteArray answer;
        QDataStream out(&answer, QIODevice::WriteOnly);
        const auto symbols = m_engine ? m_engine->read(strip, models) : std::nullopt;
        if (!symbols)
            qFatal("The engine cannot be used.");
        out << quint32(symbols->size());
        for (const EngineSymbol &symbol : *symbols)
            out << symbol.text << symbol.left << symbol.right << symbol.confidence
                << symbol.startsWord;
        return answer;
    }

    QString m_path;
    QByteArray m_languages =
        modelsFor(QLocale().uiLanguages(),
                  modelsIn(modelFolder(QCoreApplication::applicationDirPath())))
            .join('+')
            .toLatin1();
    QHash<QByteArray, QByteArray> m_known;
    std::unique_ptr<LineEngine> m_engine;
};

/// One recognition, with its times in milliseconds.
struct Recognition
{
    RecognitionResult result;
    double ms = 0;
    double first = 0; ///< 0 where all words come at once
};

Recognition recognize(TesseractRecognizer &recognizer, const QImage &image)
{
    Recognition made;
    QElapsedTimer timer;
    timer.start();
    const auto elapsed = [&timer] { return double(timer.nsecsElapsed()) / 1e6; };
    QEventLoop loop;
    whenFinished(recognizer.recognize(image, 1,
                                      [&](const std::vector<TextObservation> &) {
                                          made.first = made.first > 0 ? made.first : elapsed();
                                      }),
                 &loop, [&](const RecognitionResult &result) {
                     made.ms = elapsed();
                     made.result = result;
                     QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
                 });
    loop.exec();
    return made;
}

QJsonObject runOf(const PageRun &run, const std::vector<ReadPiece> &pieces)
{
    QString text;
    QJsonArray confidences;
    for (const ReadPiece &piece : pieces) {
        for (const InkSymbol &symbol : piece.symbols) {
            text += (symbol.startsWord ? QStringLiteral(" ") : QString()) + symbol.text;
            confidences.append(int(symbol.confidence));
        }
        for (const ReadWord &word : piece.words)
            text += QStringLiteral(" <%1>").arg(word.text);
    }
    const LetterMetrics &metrics = run.metrics;
    return {{"box", boxOf(run.text.box)},  {"text", text},
            {"confidences", confidences},  {"baseline", metrics.baseline},
            {"cap", metrics.capHeight},    {"x", metrics.xHeight},
            {"certain", metrics.isCertain}};
}

void readWith(CachingEngine &engine, const QString &path)
{
    const Page page = pageOf(QImage(path).convertToFormat(QImage::Format_RGB32));
    std::vector<std::vector<ReadPiece>> readings;
    QJsonArray runs;
    for (const PageRun &run : page.runs) {
        readings.push_back(readRun(page.ink, run.text, run.metrics, engine).value());
        runs.append(runOf(run, readings.back()));
    }
    readByCells(page.ink, page.runs, fixedGrids(page.ink, page.runs), readings);
    QJsonArray words;
    for (const auto &line : linesOf(page, std::move(readings))) {
        for (const ReadWord &word : line)
            words.append(QJsonObject{
                {"text", word.text}, {"box", boxOf(word.box)}, {"confidence", word.confidence}});
    }
    print({{"image", path}, {"words", words}, {"runs", runs}});
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QStringList paths = app.arguments().mid(1);
    const bool isCold = paths.removeAll(QStringLiteral("--cold")) > 0;
    if (paths.size() > 1 && paths.first() == QStringLiteral("--cache")) {
        CachingEngine engine(paths.at(1));
        for (const QString &path : paths.mid(2))
            readWith(engine, path);
        return 0;
    }
    TesseractRecognizer recognizer;
    bool isFirst = !isCold;
    for (const QString &path : paths) {
        const QImage image = QImage(path).convertToFormat(QImage::Format_RGB32);
        if (std::exchange(isFirst, false))
            recognize(recognizer, image);
        const Recognition made = recognize(recognizer, image);
        if (!made.result.error.isEmpty()) {
            std::fprintf(stderr, "%s\n", qPrintable(made.result.error));
            return 1;
        }
        QJsonObject line{{"image", path}, {"words", wordsOf(made.result)}, {"ms", made.ms}};
        if (made.first > 0)
            line.insert("first", made.first);
        print(line);
    }
    return 0;
}
