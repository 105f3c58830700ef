// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/LogCapture.h"
#include "reading/PageReader.h"

#include <QDeadlineTimer>
#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

/// Reads one letter in every line, but for the lines that it breaks down on.
class CountingEngine : public LineEngine
{
public:
    CountingEngine(std::shared_ptr<int> linesRead, QSet<int> broken)
        : m_linesRead(std::move(linesRead))
        , m_broken(std::move(broken))
    {
    }
    std::optional<std::vector<EngineSymbol>> read(const LineStrip &strip, Models) override
    {
        if (m_broken.contains((*m_linesRead)++))
            return std::nullopt;
        return std::vector<EngineSymbol>{{"M", 4, strip.width - 4.0, 96, true}};
    }

private:
    std::shared_ptr<int> m_linesRead;
    QSet<int> m_broken;
};

/// A page with so many lines of so many blocks each.
Page pageOfBlocks(int lines, int blocks = 1)
{
    constexpr int pitch = 14;
    QImage image(190 + blocks * pitch, lines * 40, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    for (int i = 0; i < lines; ++i) {
        for (int x = 20; x < 20 + blocks * pitch; x += pitch) {
            painter.fillRect(x, i * 40 + 10, 2, 14, Qt::black);
            painter.fillRect(x + 8, i * 40 + 10, 2, 14, Qt::black);
            painter.fillRect(x, i * 40 + 16, 10, 2, Qt::black);
        }
    }
    painter.end();
    return pageOf(image);
}

/// Reads every other run itself.
class EveryOther : public ExactReading
{
public:
    explicit EveryOther(const Page &page) : m_page(page)
    {
        for (std::size_t run = 1; run < m_page.runs.size(); run += 2)
            m_lines.push_back({{"exact", m_page.runs[run].text.box, 100}});
    }
    bool mayTake(std::size_t) const override { return true; }
    void read(const std::function<bool()> &isWaitedFor) override
    {
        m_isRead = true;
        wasWaitedFor = isWaitedFor();
    }
    bool hasTaken(std::size_t run) const override { return m_isRead && run % 2 == 1; }
    const std::vector<std::vector<ReadWord>> &lines() const override { return m_lines; }
    bool isIn(const QRect &word) const override
    {
        return m_page.runs[2].text.box.contains(word.center());
    }
    void improve(std::vector<std::vector<ReadPiece>> &readings) const override
    {
        for (const std::size_t run : dropped)
            readings[run].clear();
    }
    void learn(const std::function<bool()> &) override { }

    bool wasWaitedFor = false;
    std::vector<std::size_t> dropped; ///< by improve()

private:
    Page m_page;
    std::vector<std::vector<ReadWord>> m_lines;
    bool m_isRead = false;
};

QStringList wordsIn(const std::vector<std::vector<ReadWord>> &lines)
{
    QStringList words;
    for (const std::vector<ReadWord> &line : lines) {
        for (const ReadWord &word : line)
            words += QStringLiteral("%1 %2").arg(word.text).arg(word.box.top() / 40);
    }
    return words;
}

/// A page of which each line takes a tenth of a second.
struct SlowPage
{
    explicit SlowPage(int lines, bool readsExactly = false)
    {
        const Page page = pageOfBlocks(lines);
        const auto pool = std::make_shared<EnginePool>(
            [this] { return std::make_unique<CountingEngine>(linesRead, QSet<int>{}); });
        std::unique_ptr<ExactReading> exact;
        if (readsExactly)
            exact = std::make_unique<EveryOther>(page);
        reader = std::make_unique<PageReader>(page, pool, std::move(exact));
        reader->tellParts({[this](const auto &lines) { parts.push_back(wordsIn(lines)); },
                           [this] { return std::chrono::milliseconds(100 * *linesRead); }});
    }

    std::shared_ptr<int> linesRead = std::make_shared<int>(0);
    std::vector<QStringList> parts;
    std::unique_ptr<PageReader> reader;
};

QSet<int> firstLines(int count)
{
    QSet<int> lines;
    for (int i = 0; i < count; ++i)
        lines.insert(i);
    return lines;
}

} // namespace

class TestPageReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void readsEveryLineButThoseThatAnEngineBreaksDownOn_data()
    {
        QTest::addColumn<int>("broken");
        QTest::addColumn<bool>("isUnreadable");
        QTest::addColumn<QStringList>("log");
        QTest::newRow("none") << 0 << false << QStringList{};
        QTest::newRow("one")
            << 1 << false
            << QStringList{
                   "Text recognition left out 1 of 20 lines: its engine hung or broke down"};
        QTest::newRow("three")
            << 3 << false
            << QStringList{
                   "Text recognition left out 3 of 20 lines: its engine hung or broke down"};
        QTest::newRow("four") << 4 << true << QStringList{};
    }
    void readsEveryLineButThoseThatAnEngineBreaksDownOn()
    {
        QFETCH(int, broken);
        QFETCH(bool, isUnreadable);
        QFETCH(QStringList, log);
        const auto linesRead = std::make_shared<int>(0);
        int engines = 0;
        PageReader reader(pageOfBlocks(20), std::make_shared<EnginePool>([&] {
                              ++engines;
                              return std::make_unique<CountingEngine>(linesRead,
                                                                      firstLines(broken));
                          }));
        QCOMPARE(reader.runs(), std::size_t(20));
        LogCapture capture;
        reader.read([] { return false; });
        QCOMPARE(reader.isUnreadable(), isUnreadable);
        if (!isUnreadable) {
            QCOMPARE(*linesRead, 20);
            QCOMPARE(engines, broken + 1);
            QCOMPARE(reader.takeLines().size(), std::size_t(20 - broken));
        }
        QCOMPARE(capture.lines(), log);
    }

    /// They are read in rounds, of which some have no line.
    void readsFewLinesOfALargePage_data()
    {
        QTest::addColumn<int>("lines");
        for (const int lines : {2, 3, 4, 5, 8, 9})
            QTest::addRow("%d", lines) << lines;
    }
    void readsFewLinesOfALargePage()
    {
        QFETCH(int, lines);
        const auto linesRead = std::make_shared<int>(0);
        const Page page = pageOfBlocks(lines, 6000 / lines);
        QCOMPARE(page.runs.size(), std::size_t(lines));
        PageReader reader(page, std::make_shared<EnginePool>([&] {
                              return std::make_unique<CountingEngine>(linesRead, QSet<int>{});
                          }));
        const QDeadlineTimer patience(20'000);
        reader.read([&] { return patience.hasExpired(); });
        QVERIFY(!patience.hasExpired());
        QVERIFY(!reader.isUnreadable());
    }

    void leavesToTheEngineWhatIsNotReadWithoutIt()
    {
        const auto linesRead = std::make_shared<int>(0);
        const Page page = pageOfBlocks(6);
        PageReader reader(page, std::make_shared<EnginePool>([&] {
                              return std::make_unique<CountingEngine>(linesRead, QSet<int>{});
                          }),
                          std::make_unique<EveryOther>(page));
        reader.read([] { return false; });
        QCOMPARE(*linesRead, 3);
        // The third run's words lie where others were read without the engine.
        QCOMPARE(wordsIn(reader.takeLines()),
                 QStringList({"M 0", "M 4", "exact 1", "exact 3", "exact 5"}));
    }

    void putsWhatIsMadeOfReadingsInTheirPlace()
    {
        const Page page = pageOfBlocks(6);
        const auto linesRead = std::make_shared<int>(0);
        auto exact = std::make_unique<EveryOther>(page);
        exact->dropped = {4};
        PageReader reader(page, std::make_shared<EnginePool>([&] {
                              return std::make_unique<CountingEngine>(linesRead, QSet<int>{});
                          }),
                          std::move(exact));
        reader.read([] { return false; });
        QStringList words = wordsIn(reader.takeLines());
        words.sort();
        QCOMPARE(words, QStringList({"M 0", "exact 1", "exact 3", "exact 5"}));
    }

    void asksForHasteWhereNothingElseIsReadMeanwhile()
    {
        const Page page = pageOfBlocks(6);
        auto exact = std::make_unique<EveryOther>(page);
        const EveryOther &asked = *exact;
        PageReader reader(page, std::make_shared<EnginePool>([] {
                              return std::make_unique<CountingEngine>(std::make_shared<int>(0),
                                                                      QSet<int>{});
                          }),
                          std::move(exact));
        reader.read([] { return false; });
        QVERIFY(asked.wasWaitedFor);
    }

    void tellsTheFirstWordsOfALongPageWhileTheRestIsRead()
    {
        SlowPage page(12);
        page.reader->read([] { return false; });
        // In the order in which they are read, from 0.3 s on, a quarter of a second apart; what
        // is left after the ninth line comes soon.
        QCOMPARE(page.parts,
                 (std::vector<QStringList>{
                     {"M 0", "M 1", "M 2"}, {"M 3", "M 4", "M 5"}, {"M 6", "M 7", "M 8"}}));
        QCOMPARE(wordsIn(page.reader->takeLines()).size(), 12);
    }

    void tellsNothingOfAShortPageBeforeItsEnd()
    {
        SlowPage page(5);
        page.reader->read([] { return false; });
        QVERIFY(page.parts.empty());
        QCOMPARE(wordsIn(page.reader->takeLines()).size(), 5);
    }

    void tellsNothingAfterItWasCancelled()
    {
        SlowPage page(12);
        page.reader->read([&] { return *page.linesRead >= 5; });
        QCOMPARE(page.parts.size(), std::size_t(1));
    }

    void tellsOnceWhatIsReadWithoutTheEngine()
    {
        SlowPage page(24, true);
        page.reader->read([] { return false; });
        QCOMPARE(page.parts.size(), std::size_t(3));
        const QStringList exact = page.parts[0].filter(QStringLiteral("exact"));
        QCOMPARE(exact.size(), 12);
        QStringList all = page.parts[0] + page.parts[1] + page.parts[2];
        QCOMPARE(all.removeDuplicates(), 0);
        QVERIFY(all.size() > 12);
        QVERIFY(!all.contains(QStringLiteral("M 2"))); // it lies where words were read exactly
    }

    void isUnreadableWithoutAnEngine()
    {
        PageReader reader(pageOfBlocks(2), std::make_shared<EnginePool>([] {
                              return std::unique_ptr<LineEngine>();
                          }));
        reader.read([] { return false; });
        QVERIFY(reader.isUnreadable());
    }

    void stopsBetweenTwoLinesWhenItIsCancelled()
    {
        const auto linesRead = std::make_shared<int>(0);
        const auto engines = std::make_shared<EnginePool>(
            [&] { return std::make_unique<CountingEngine>(linesRead, QSet<int>{}); });
        PageReader reader(pageOfBlocks(20), engines);
        reader.read([&] { return *linesRead == 5; });
        QCOMPARE(*linesRead, 5);
        QCOMPARE(engines->count(), 1);
    }
};

QTEST_APPLESS_MAIN(TestPageReader)
#include "tst_PageReader.moc"
