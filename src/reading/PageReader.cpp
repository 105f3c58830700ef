// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/PageReader.h"

#include "foundation/Log.h"
#include "reading/RunReader.h"

#include <algorithm>

namespace tovek {

namespace {

/// A run that makes its engine end is passed over; with more of them the engine is at fault.
constexpr int mostEnginesLost = 3;

/// In columns of the strips that engines read, of which one reads 20 to 40 thousand in a second: a
/// page with more is read from a sample on.
constexpr double largePage = 90'000;
/// Every so many-th run, of all widths, belongs to the sample.
constexpr std::size_t sampleStep = 7;
/// Of a run's width, what may be left to an engine word by word.
constexpr double mostUnknown = 0.6;
constexpr std::chrono::milliseconds checkInterval{20};
/// Between two words of one line, in heights of a line.
constexpr double widestBeside = 1.5;

double columnsOf(const PageRun &run)
{
    return run.text.box.width() * 20 / std::max(run.metrics.capHeight, 1.0);
}

bool standsBeside(const QRect &word, const QRect &other)
{
    const int middle = word.center().y();
    const int gap = std::max(word.left() - other.right(), other.left() - word.right());
    return middle >= other.top() && middle <= other.bottom()
        && gap <= other.height() * widestBeside;
}

/// Words that the engine read beside words of a line that was read without it belong to that line.
void giveToLines(std::vector<ReadWord> &words, std::vector<std::vector<ReadWord>> &lines)
{
    std::erase_if(words, [&lines](const ReadWord &word) {
        for (std::vector<ReadWord> &line : lines) {
            const auto at = std::find_if(line.begin(), line.end(), [&](const ReadWord &other) {
                return word.box.left() < other.box.left();
            });
            const bool isBeside = (at != line.end() && standsBeside(word.box, at->box))
                || (at != line.begin() && standsBeside(word.box, std::prev(at)->box));
            if (!isBeside)
                continue;
            line.insert(at, word);
            return true;
        }
        return false;
    });
}

} // namespace

PageReader::PageReader(Page page, std::shared_ptr<EnginePool> engines,
                       std::unique_ptr<ExactReading> exact)
    : m_page(std::move(page))
    , m_engines(std::move(engines))
    , m_exact(std::move(exact))
    , m_order(m_page.widestFirst)
    , m_readings(m_page.runs.size())
{
    if (m_exact)
        std::stable_partition(m_order.begin(), m_order.end(),
                              [this](std::size_t run) { return !m_exact->mayTake(run); });
    putSampleFirst();
}

void PageReader::putSampleFirst()
{
    std::vector<std::size_t> sample;
    std::vector<std::size_t> rest;
    double columns = 0;
    for (const std::size_t run : m_order) {
        const bool isForEngine = !m_exact || !m_exact->mayTake(run);
        const bool isSample = isForEngine && (sample.size() + rest.size()) % sampleStep == 0;
        (isSample ? sample : rest).push_back(run);
        columns += isForEngine ? columnsOf(m_page.runs[run]) : 0;
    }
    if (columns < largePage)
        return;
    m_sample = m_sampleLeft = sample.size();
    m_order = std::move(sample);
    m_order.insert(m_order.end(), rest.begin(), rest.end());
}

void PageReader::waitForSample(const std::function<bool()> &isCancelled)
{
    std::unique_lock lock(m_mutex);
    while (m_sampleLeft > 0 && !m_isUnreadable && !isCancelled())
        m_sampleRead.wait_for(lock, checkInterval);
    if (m_hasLearned || m_sampleLeft > 0)
        return;
    for (std::size_t i = 0; i < m_sample; ++i)
        m_known.learn(m_readings[m_order[i]]);
    m_hasLearned = true;
}

void PageReader::endSampleRun()
{
    const std::lock_guard lock(m_mutex);
    if (--m_sampleLeft == 0)
        m_sampleRead.notify_all();
}

void PageReader::read(const std::function<bool()> &isCancelled)
{
    ++m_readers;
    if (m_exact && !m_isExactBegun.exchange(true))
        m_exact->read([this] { return m_readers == 1 || m_nextRun >= m_page.runs.size(); });
    std::unique_ptr<LineEngine> engine;
    for (std::size_t next = m_nextRun++; next < m_page.runs.size() && !isCancelled();
         next = m_nextRun++) {
        const std::size_t run = m_order[next];
        const bool isSample = next < m_sample;
        if (m_sample > 0 && !isSample)
            waitForSample(isCancelled);
        if (m_exact && m_exact->hasTaken(run)) {
            if (isSample)
                endSampleRun();
            continue;
        }
        if (!engine)
            engine = m_engines->take();
        if (!engine)
            m_isUnreadable = true;
        if (m_isUnreadable)
            break;
        if (!(m_sample > 0 && !isSample ? readUnknown(*engine, run) : readRun(*engine, run))) {
            engine = nullptr;
            if (++m_lost > mostEnginesLost)
                m_isUnreadable = true;
        }
        if (isSample)
            endSampleRun();
    }
    if (engine)
        m_engines->giveBack(std::move(engine));
    --m_readers;
}

std::vector<std::vector<ReadWord>> PageReader::takeLines()
{
    if (m_lost > 0)
        logLine(QStringLiteral("Text recognition left out %1 of %2 lines: its engine hung or "
                               "broke down")
                    .arg(m_lost.load())
                    .arg(m_page.runs.size()));
    if (!m_exact)
        return linesOf(m_page, std::move(m_readings));
    for (std::size_t i = 0; i < m_readings.size(); ++i) {
        if (m_exact->hasTaken(i))
            m_readings[i].clear();
    }
    std::vector<std::vector<ReadWord>> lines = linesOf(m_page, std::move(m_readings));
    for (std::vector<ReadWord> &line : lines)
        std::erase_if(line, [this](const ReadWord &word) { return m_exact->isIn(word.box); });
    std::vector<std::vector<ReadWord>> exact = m_exact->takeLines();
    for (std::vector<ReadWord> &line : lines)
        giveToLines(line, exact);
    std::erase_if(lines, [](const auto &line) { return line.empty(); });
    for (std::vector<ReadWord> &line : exact)
        lines.push_back(std::move(line));
    return lines;
}

void PageReader::learn(const std::function<bool()> &isCancelled)
{
    if (m_exact)
        m_exact->learn(isCancelled);
}

bool PageReader::readRun(LineEngine &engine, std::size_t run)
{
    auto pieces =
        tovek::readRun(m_page.ink, m_page.runs[run].text, m_page.runs[run].metrics, engine);
    if (pieces)
        m_readings[run] = std::move(*pieces);
    return pieces.has_value();
}

bool PageReader::readUnknown(LineEngine &engine, std::size_t at)
{
    const PageRun &run = m_page.runs[at];
    const auto words = engine.readsByWords() ? std::nullopt : m_known.read(m_page.ink, run);
    if (!words)
        return readRun(engine, at);
    int unknown = 0;
    for (const KnownGlyphs::Word &word : *words)
        unknown += word.symbols.empty() ? word.box.width() : 0;
    if (unknown > run.text.box.width() * mostUnknown)
        return readRun(engine, at);
    ReadPiece piece{run.metrics};
    for (std::size_t i = 0; i < words->size();) {
        std::vector<InkSymbol> symbols = (*words)[i].symbols;
        if (symbols.empty()) {
            QRect box;
            for (; i < words->size() && (*words)[i].symbols.empty(); ++i)
                box |= (*words)[i].box;
            const TextRun part = partOf(run.text, box);
            const auto pieces = part.patches.empty()
                ? std::vector<ReadPiece>{}
                : tovek::readRun(m_page.ink, part, run.metrics, engine);
            if (!pieces)
                return false;
            for (const ReadPiece &one : *pieces)
                symbols.insert(symbols.end(), one.symbols.begin(), one.symbols.end());
            if (!symbols.empty())
                symbols.front().startsWord = true;
        } else {
            ++i;
        }
        piece.symbols.insert(piece.symbols.end(), symbols.begin(), symbols.end());
    }
    m_readings[at] = {std::move(piece)};
    return true;
}

} // namespace tovek
