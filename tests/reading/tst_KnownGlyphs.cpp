// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/PageReader.h"

#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QTest>

#include <atomic>
#include <cmath>
#include <random>
#include <thread>

using namespace tovek;

namespace {

constexpr int lineHeight = 20;
constexpr int blank = 7;
constexpr int letterGap = 2;

/// Letters that differ in their width: n, L and i, and a rare one.
int widthOf(QChar c)
{
    return c == 'n' ? 6 : c == 'L' ? 4 : c == 'i' ? 2 : 9;
}

void drawLetter(QPainter &painter, QPoint at, QChar c)
{
    const int width = widthOf(c);
    const int height = c == 'L' ? 11 : 8;
    if (c == 'L') {
        painter.fillRect(at.x(), at.y() - height, 2, height, Qt::black);
        painter.fillRect(at.x(), at.y() - 2, width, 2, Qt::black);
        return;
    }
    painter.fillRect(at.x(), at.y() - height, width, 2, Qt::black);
    for (int x = 0; x <= width - 2; x += std::max(1, (width - 2) / (width > 6 ? 2 : 1)))
        painter.fillRect(at.x() + x, at.y() - height, 2, height, Qt::black);
}

QImage pictureOf(const QStringList &lines)
{
    QImage image(900, int(lines.size()) * lineHeight + 10, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    for (int i = 0; i < lines.size(); ++i) {
        int x = 10;
        for (const QChar c : lines.at(i)) {
            if (c == ' ') {
                x += blank - letterGap;
                continue;
            }
            drawLetter(painter, {x, (i + 1) * lineHeight}, c);
            x += widthOf(c) + letterGap;
        }
    }
    return image;
}

/// Tells the letters by their widths, as an engine would, and counts its columns.
class WidthEngine : public LineEngine
{
public:
    /// Of the letters n of a long line it reads the `misread`-th as another.
    WidthEngine(std::atomic<int> &columns, int misread) : m_columns(columns), m_misread(misread) { }
    std::optional<std::vector<EngineSymbol>> read(const LineStrip &strip, Models) override
    {
        m_columns += strip.width;
        std::vector<EngineSymbol> symbols;
        int from = -1;
        int count = 0;
        double end = -100;
        for (int x = 0; x <= strip.width; ++x) {
            const bool isInk = x < strip.width && hasInk(strip, x);
            if (isInk && from < 0)
                from = x;
            if (isInk || from < 0)
                continue;
            const double width = (x - from) / strip.scale;
            QString text(width > 8 ? 'm' : width > 5 ? 'n' : width > 3 ? 'L' : 'i');
            if (text == QLatin1String("n") && ++count == m_misread)
                text = QStringLiteral("h");
            symbols.push_back(
                {text, double(from), double(x), 99, (from - end) / strip.scale > blank - 2});
            end = x;
            from = -1;
        }
        return symbols;
    }

private:
    static bool hasInk(const LineStrip &strip, int x)
    {
        for (int y = 0; y < LineStrip::height; ++y) {
            if (strip.grey[std::size_t(y) * strip.width + x] < 128)
                return true;
        }
        return false;
    }
    std::atomic<int> &m_columns;
    int m_misread; ///< never where it is 0
};

QStringList randomLines(int count, bool hasRareOnes)
{
    std::mt19937 random(5);
    QStringList lines;
    for (int i = 0; i < count; ++i) {
        QString line;
        while (line.size() < 70) {
            for (int letters = 3 + int(random() % 5); letters > 0; --letters)
                line += QStringLiteral("nLi").at(int(random() % 3));
            line += ' ';
        }
        // One that no line before it has.
        if (hasRareOnes && i == count / 2 + 1)
            line.replace(20, 6, QStringLiteral(" nmn n"));
        lines += line.trimmed().simplified();
    }
    return lines;
}

QStringList textOf(const std::vector<std::vector<ReadWord>> &read)
{
    QStringList lines;
    for (const auto &line : read) {
        QStringList words;
        for (const ReadWord &word : line)
            words += word.text;
        lines += words.join(' ');
    }
    return lines;
}

struct Reading
{
    QStringList lines;
    int columns = 0; ///< that an engine read
};

Reading readingOf(const QStringList &lines, int threads, int misread = 0)
{
    std::atomic<int> columns = 0;
    PageReader reader(pageOf(pictureOf(lines)), std::make_shared<EnginePool>([&] {
                          return std::make_unique<WidthEngine>(columns, misread);
                      }));
    std::vector<std::thread> others;
    for (int i = 1; i < threads; ++i)
        others.emplace_back([&] { reader.read([] { return false; }); });
    reader.read([] { return false; });
    for (std::thread &other : others)
        other.join();
    return {textOf(reader.takeLines()), columns};
}

} // namespace

class TestKnownGlyphs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void readsLargePageFromAFewLines_data()
    {
        QTest::addColumn<bool>("hasRareOnes");
        QTest::addColumn<int>("threads");
        QTest::newRow("one thread") << false << 1;
        QTest::newRow("several threads") << false << 3;
        QTest::newRow("a letter that is met once") << true << 2;
    }
    void readsLargePageFromAFewLines()
    {
        QFETCH(bool, hasRareOnes);
        QFETCH(int, threads);
        const QStringList lines = randomLines(140, hasRareOnes);
        const Reading reading = readingOf(lines, threads);
        QCOMPARE(reading.lines, lines);
        const int perLine = readingOf(lines.mid(0, 10), 1).columns / 10;
        QVERIFY2(reading.columns < perLine * 140 / 10,
                 qPrintable(QString::number(reading.columns)));
    }
    void overrulesAnEngineThatIsMistakenHereAndThere()
    {
        const QStringList lines = randomLines(140, false);
        const Reading reading = readingOf(lines, 2, 8);
        QCOMPARE(reading.lines, lines);
        const int perLine = readingOf(lines.mid(0, 10), 1).columns / 10;
        QVERIFY2(reading.columns < perLine * 140 / 10,
                 qPrintable(QString::number(reading.columns)));
    }
    void readsAllOfSmallPageWithEngine()
    {
        const QStringList lines = randomLines(20, false);
        QCOMPARE(readingOf(lines, 1).lines, lines);
        QVERIFY(readingOf(lines, 1).columns >= readingOf(lines.mid(0, 10), 1).columns * 2 * 0.9);
    }
    void endsWhenItIsCancelledBeforeAnythingIsLearnt()
    {
        std::atomic<int> columns = 0;
        PageReader reader(pageOf(pictureOf(randomLines(140, false))),
                          std::make_shared<EnginePool>(
                              [&] { return std::make_unique<WidthEngine>(columns, 0); }));
        const auto isCancelled = [&] { return columns > 3000; };
        std::thread other([&] { reader.read(isCancelled); });
        reader.read(isCancelled);
        other.join();
        QVERIFY(!reader.isUnreadable());
    }
};

QTEST_GUILESS_MAIN(TestKnownGlyphs)
#include "tst_KnownGlyphs.moc"
