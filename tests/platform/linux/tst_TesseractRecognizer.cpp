// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/LogCapture.h"
#include "platform/linux/TesseractRecognizer.h"
#include "platform/linux/ocr/RecognitionModels.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QPainter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <random>

using namespace tovek;

namespace {

QImage lineOf(const QString &text, const QFont &font, QColor paper, QColor ink)
{
    const QFontMetrics metrics(font);
    QImage image(metrics.horizontalAdvance(text) + 40, metrics.height() + 16, QImage::Format_RGB32);
    image.fill(paper);
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(ink);
    painter.drawText(20, 8 + metrics.ascent(), text);
    return image;
}

QImage pageOf(const QString &words, QSize size)
{
    QFont font("DejaVu Sans");
    font.setPixelSize(12);
    QImage page(size, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter painter(&page);
    painter.setFont(font);
    for (int y = 20; y < size.height() - 10; y += 16)
        painter.drawText(10, y, words.repeated(size.width() / 6 / int(words.size())));
    return page;
}

/// Of the same text, in which few lines have letters of the same look.
QImage variedPageOf(const QString &words, QSize size)
{
    QImage page(size, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter painter(&page);
    const QStringList families{"DejaVu Sans", "DejaVu Serif", "DejaVu Sans Mono"};
    for (int line = 0, y = 24; y < size.height() - 10; ++line, y += 22) {
        QFont font(families[line % 3]);
        font.setPixelSize(11 + line % 7);
        font.setBold(line % 2 == 1);
        font.setItalic(line % 5 > 2);
        painter.setFont(font);
        painter.drawText(10, y, words.repeated(size.width() / 10 / int(words.size())));
    }
    return page;
}

QString textOf(const RecognitionResult &result)
{
    QStringList lines;
    for (const TextObservation &observation : result.observations)
        lines += observation.text;
    return lines.join('\n');
}

qint64 residentKilobytes()
{
    QFile file("/proc/self/statm");
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').at(1).toLongLong() * 4 : 0;
}

QImage noise(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    std::mt19937 random(1);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, random() | 0xff000000U);
    }
    return image;
}

} // namespace

class TestTesseractRecognizer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!modelsIn(modelFolder({})).contains("eng"))
            QSKIP("no English recognition model is installed");
        m_recognizer = std::make_unique<TesseractRecognizer>();
    }
    void cleanupTestCase() { m_recognizer.reset(); }
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }
    void cleanup() { qunsetenv("TESSDATA_PREFIX"); }

    void readsSingleLinesToTheLetter_data()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<int>("pixels");
        QTest::addColumn<bool>("isDark");
        for (const char *family : {"DejaVu Sans", "Liberation Sans", "Noto Sans",
                                   "DejaVu Sans Mono", "Liberation Mono"}) {
            for (int pixels : {10, 11, 12, 13, 14, 16}) {
                for (bool isDark : {false, true})
                    QTest::addRow("%s %d %s", family, pixels, isDark ? "dark" : "light")
                        << family << pixels << isDark;
            }
        }
    }
    void readsSingleLinesToTheLetter()
    {
        QFETCH(QString, family);
        QFETCH(int, pixels);
        QFETCH(bool, isDark);
        QFont font(family);
        if (!QFontInfo(font).family().startsWith(family))
            QSKIP("the font is not installed");
        font.setPixelSize(pixels);
        const QColor paper = isDark ? QColor(40, 42, 46) : QColor(Qt::white);
        const QColor ink = isDark ? QColor(220, 220, 220) : QColor(30, 30, 30);
        for (const char *text :
             {"Open the file and save a copy of it", "Check for updates every day",
              "Remember this choice for all windows", "Could not connect to the server",
              "The quick brown fox jumps over the lazy dog", "Delete the selected messages"}) {
            const QImage image = lineOf(text, font, paper, ink);
            QCOMPARE(textOf(m_recognizer->recognize(image, 1).result()), QString(text));
        }
    }

    /// Alone on a line, the small letters are as low as specks.
    void readsSmallWordsOfNinePixelText_data()
    {
        QTest::addColumn<QString>("family");
        for (const char *family : {"DejaVu Sans", "Noto Sans", "Liberation Sans"})
            QTest::addRow("%s", family) << family;
    }
    void readsSmallWordsOfNinePixelText()
    {
        QFETCH(QString, family);
        QFont font(family);
        if (!QFontInfo(font).family().startsWith(family))
            QSKIP("the font is not installed");
        font.setPixelSize(9);
        for (const char *text : {"none", "more", "scan", "move"}) {
            const QImage image = lineOf(text, font, Qt::white, QColor(30, 30, 30));
            // At this size hinting may move letters apart like words; none is to vanish.
            const QString read = textOf(m_recognizer->recognize(image, 1).result());
            QCOMPARE(QString(read).remove(' '), QString(text));
        }
    }

    void readsNothingIntoSpecks()
    {
        QImage image(1920, 1080, QImage::Format_RGB32);
        image.fill(Qt::white);
        std::mt19937 random(7);
        const auto upTo = [&](int most) { return int(random() % unsigned(most)); };
        QPainter painter(&image);
        for (int i = 0; i < 20000; ++i)
            painter.fillRect(upTo(1900), upTo(1060), 1 + upTo(3), 1 + upTo(3),
                             QColor(0, 0, upTo(160)));
        painter.fillRect(1000, 500, 300, 40, Qt::white);
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPixelSize(13);
        painter.setFont(font);
        painter.drawText(1010, 525, QStringLiteral("Read the label of a photo"));
        painter.end();
        QCOMPARE(textOf(m_recognizer->recognize(image, 1).result()),
                 QStringLiteral("Read the label of a photo"));
    }

    void givesRepeatedWordsTheirPlaces()
    {
        QFont font("DejaVu Sans");
        font.setPixelSize(14);
        const QFontMetrics metrics(font);
        const QImage image = lineOf("to be or not to be", font, Qt::white, Qt::black);
        const auto result = m_recognizer->recognize(image, 1).result();
        QCOMPARE(textOf(result), QString("to be or not to be"));
        const auto &ranges = result.observations.front().ranges;
        QCOMPARE(ranges.size(), std::size_t(6));
        for (std::size_t i : {0, 1, 4, 5}) {
            const QString before = QString("to be or not to be").left(ranges[i].from);
            const double left = 20 + metrics.horizontalAdvance(before);
            QVERIFY2(std::abs(ranges[i].box.left() - left) <= 2, qPrintable(before));
        }
    }

    void bearsEveryPicture_data()
    {
        QTest::addColumn<QImage>("image");
        QImage black(3840, 2160, QImage::Format_RGB32);
        black.fill(Qt::black);
        QTest::newRow("black, 4K") << black;
        QTest::newRow("noise") << noise({800, 600});
        QTest::newRow("null") << QImage();
        for (int size : {1, 2, 5, 20})
            QTest::addRow("noise of %d", size) << noise({size, size});
    }
    void bearsEveryPicture()
    {
        QFETCH(QImage, image);
        QElapsedTimer timer;
        timer.start();
        const RecognitionResult result = m_recognizer->recognize(image, 1).result();
        QCOMPARE(result.error, QString());
        QVERIFY(timer.elapsed() < 20000);
    }

    void saysWhatToInstallWithoutAModel()
    {
        QTemporaryDir empty;
        qputenv("TESSDATA_PREFIX", QFile::encodeName(empty.path()));
        const RecognitionResult result = m_recognizer->recognize(noise({30, 30}), 1).result();
        QVERIFY(result.observations.empty());
        QVERIFY(result.error.contains("tesseract-ocr-eng"));
    }

    void saysWhatToInstallForAScriptThatItSees()
    {
        const QString from = modelFolder({});
        QTemporaryDir folder;
        for (const char *model : {"eng", "osd", "rus"}) {
            if (!modelsIn(from).contains(model))
                QSKIP("the models of English, Russian and of scripts are not all installed");
        }
        const auto install = [&](const char *model) {
            const QString name = QStringLiteral("/%1.traineddata").arg(model);
            return QFile::link(from + name, folder.path() + name);
        };
        QVERIFY(install("eng") && install("osd"));
        qputenv("TESSDATA_PREFIX", QFile::encodeName(folder.path()));
        const QString text = QStringLiteral("Быстрая лиса прыгает через ленивую собаку у дома");
        QFont font("DejaVu Sans");
        font.setPixelSize(15);
        const QImage line = lineOf(text, font, Qt::white, Qt::black);
        TesseractRecognizer recognizer;
        LogCapture log;
        const QImage english =
            lineOf("Could not connect to the server in the other room", font, Qt::white, Qt::black);
        std::vector<MissingModel> missing;
        const auto tell = [&](const MissingModel &model) { missing.push_back(model); };
        (void)recognizer.recognize(english, 1, {}, tell).result();
        QVERIFY(missing.empty());
        // Each time, though the log has it once: nobody may have looked at the first.
        for (std::size_t time : {1, 2}) {
            const QString misread = textOf(recognizer.recognize(line, 1, {}, tell).result());
            QVERIFY(misread != text);
            QTRY_COMPARE_WITH_TIMEOUT(missing.size(), time, 20000);
            QVERIFY(missing.back() == (MissingModel{"tesseract-ocr-rus", "Cyrillic"}));
        }
        QCOMPARE(log.lines(),
                 QStringList{"Text is misread: install tesseract-ocr-rus to read Cyrillic"});
        QVERIFY(install("rus"));
        QCOMPARE(textOf(recognizer.recognize(line, 1, {}, tell).result()), text);
        QTest::qWait(50);
        QCOMPARE(missing.size(), std::size_t(2));
    }

    void survivesADamagedModel_data()
    {
        QTest::addColumn<qint64>("length");
        QTest::newRow("empty") << qint64(0);
        QTest::newRow("cut off") << qint64(100000);
    }
    void survivesADamagedModel()
    {
        QFETCH(qint64, length);
        QTemporaryDir folder;
        QFile model(modelFolder({}) + "/eng.traineddata");
        QVERIFY(model.open(QIODevice::ReadOnly));
        QFile damaged(folder.filePath("eng.traineddata"));
        QVERIFY(damaged.open(QIODevice::WriteOnly));
        damaged.write(model.read(length));
        damaged.close();
        qputenv("TESSDATA_PREFIX", QFile::encodeName(folder.path()));
        QFont font("DejaVu Sans");
        const QImage image = lineOf("text", font, Qt::white, Qt::black);
        const RecognitionResult result = m_recognizer->recognize(image, 1).result();
        QVERIFY(result.observations.empty());
        QVERIFY(result.error.contains("reinstall"));
    }

    void tellsTheFirstWordsOfALargePageEarly()
    {
        const QImage page =
            variedPageOf("many different words on a page, and Figures 0123 ", {3000, 1200});
        (void)m_recognizer->recognize(noise({30, 30}), 1).result(); // loads an engine
        QElapsedTimer timer;
        timer.start();
        QList<qint64> times;
        std::size_t told = 0;
        auto future = m_recognizer->recognize(page, 1, [&](const auto &lines) {
            times += timer.elapsed();
            for (const TextObservation &line : lines)
                told += line.ranges.size();
        });
        QTRY_VERIFY_WITH_TIMEOUT(future.isFinished(), 60000);
        const qint64 whole = timer.elapsed();
        QVERIFY(!times.isEmpty());
        QVERIFY2(times.first() < whole / 2,
                 qPrintable(QStringLiteral("%1 of %2 ms").arg(times.first()).arg(whole)));
        for (qsizetype i = 1; i < times.size(); ++i)
            QVERIFY(times[i] >= times[i - 1]);
        const RecognitionResult result = future.result();
        std::size_t words = 0;
        for (const TextObservation &line : result.observations)
            words += line.ranges.size();
        // On a fast machine the page is read before many parts are due.
        QVERIFY(told > 0 && told <= words);
        QVERIFY(result.observations == m_recognizer->recognize(page, 1).result().observations);
    }

    void tellsNothingAfterItIsCancelled()
    {
        const QImage page = pageOf("many words on a page ", {3000, 2000});
        int parts = 0;
        auto future = m_recognizer->recognize(page, 1, [&](const auto &) { ++parts; });
        QTRY_COMPARE_WITH_TIMEOUT(parts, 1, 20000);
        future.cancel();
        QTRY_VERIFY_WITH_TIMEOUT(future.isFinished(), 20000);
        QTest::qWait(50);
        QCOMPARE(parts, 1);
    }

    void stopsWhenItIsCancelled()
    {
        const QImage page = pageOf("many words on a page ", {1600, 1200});
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < 10; ++i)
            m_recognizer->recognize(page, 1).cancel();
        const QImage line = lineOf("after all", QFont("DejaVu Sans", 9), Qt::white, Qt::black);
        QCOMPARE(textOf(m_recognizer->recognize(line, 1).result()), QString("after all"));
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    }

    void givesTheMemoryBackWhenIdle()
    {
        TesseractRecognizer recognizer(std::chrono::milliseconds(200));
        QFont font("DejaVu Sans");
        const QImage image = lineOf("memory", font, Qt::white, Qt::black);
        const qint64 before = residentKilobytes();
        auto future = recognizer.recognize(image, 1);
        QTRY_VERIFY_WITH_TIMEOUT(future.isFinished(), 20000);
        QVERIFY(recognizer.warmEngines() > 0);
        QTRY_COMPARE_WITH_TIMEOUT(recognizer.warmEngines(), 0, 20000);
        const qint64 kept = residentKilobytes() - before;
        QVERIFY2(kept < 5 * 1024, qPrintable(QString::number(kept)));
    }

private:
    std::unique_ptr<TesseractRecognizer> m_recognizer;
};

QTEST_MAIN(TestTesseractRecognizer)
#include "tst_TesseractRecognizer.moc"
