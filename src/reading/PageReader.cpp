// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/PageReader.h"

#include "foundation/Log.h"
#include "reading/ExactLines.h"
#include "reading/RunReader.h"
#include "reading/UnsureLines.h"

#include <algorithm>
#include <array>

namespace tovek {

namespace {

/// A run that makes its engine end is passed over; with more of them the engine is at fault.
constexpr int mostEnginesLost = 3;

/// In columns of the strips that engines read, of which one reads 20 to 40 thousand in a second: a
/// page with more is read in rounds.
constexpr double largePage = 90'000;
/// Such a page is read in rounds, each of which knows the glyphs that those before it met. Of so
/// many runs, of all widths, one is in the first round and one in the second; each further round
/// has as many as all before it, since what is rare on the page is met late.
constexpr std::size_t roundStep = 32;
constexpr std::size_t learningRounds = 5;
/// Of a run's width, what may be left to an engine word by word.
constexpr double mostUnknown = 0.6;
constexpr std::chrono::milliseconds checkInterval{20};

double columnsOf(const PageRun &run)
{
    return run.text.box.width() * 20 / std::max(run.metrics.capHeight, 1.0);
}

/// Of the run that is the `at`-th for an engine.
std::size_t roundOf(std::size_t at)
{
    std::size_t round = 0;
    for (std::size_t step = roundStep; at % step != 0; step /= 2)
        ++round;
    return round;
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
    putInRounds();
}

void PageReader::tellParts(PageParts::Listener listener)
{
    m_parts = std::make_unique<PageParts>(m_page, m_readings, m_exact.get(), std::move(listener));
}

void PageReader::putInRounds()
{
    std::array<std::vector<std::size_t>, learningRounds + 1> rounds;
    double columns = 0;
    std::size_t count = 0;
    for (const std::size_t run : m_order) {
        const bool isForEngine = !m_exact || !m_exact->mayTake(run);
        rounds[isForEngine ? roundOf(count) : learningRounds].push_back(run);
        count += isForEngine;
        columns += isForEngine ? columnsOf(m_page.runs[run]) : 0;
    }
    if (columns < largePage)
        return;
    m_order.clear();
    for (const std::vector<std::size_t> &round : rounds) {
        m_order.insert(m_order.end(), round.begin(), round.end());
        m_roundEnds.push_back(m_order.size());
    }
    m_roundEnds.pop_back(); // from the last one nothing is learnt
    m_leftInRound = m_roundEnds.front();
}

void PageReader::waitForRound(std::size_t next, const std::function<bool()> &isCancelled)
{
    std::unique_lock lock(m_mutex);
    while (m_round < m_roundEnds.size() && next >= m_roundEnds[m_round] && !m_isUnreadable
           && !isCancelled())
        m_roundRead.wait_for(lock, checkInterval);
}

void PageReader::endRun(std::size_t at)
{
    endInRound(at);
    if (!m_parts)
        return;
    m_parts->add(m_order[at]);
    m_parts->tell();
}

void PageReader::endInRound(std::size_t at)
{
    if (m_roundEnds.empty() || at >= m_roundEnds.back())
        return;
    const std::lock_guard lock(m_mutex);
    if (--m_leftInRound > 0)
        return;
    // Nobody reads now: the next round has not begun. Of few lines, though long ones, it may have
    // none.
    while (m_leftInRound == 0 && m_round < m_roundEnds.size()) {
        const std::size_t from = m_round > 0 ? m_roundEnds[m_round - 1] : 0;
        for (std::size_t i = from; i < m_roundEnds[m_round]; ++i)
            m_known.learn(m_readings[m_order[i]]);
        ++m_round;
        if (m_round < m_roundEnds.size())
            m_leftInRound = m_roundEnds[m_round] - m_roundEnds[m_round - 1];
    }
    m_roundRead.notify_all();
}

void PageReader::read(const std::function<bool()> &isCancelled)
{
    ++m_readers;
    if (m_exact && !m_isExactBegun.exchange(true)) {
        m_exact->read([this] { return m_readers == 1 || m_nextRun >= m_page.runs.size(); });
        if (m_parts)
            m_parts->endExact();
    }
    std::unique_ptr<LineEngine> engine;
    for (std::size_t next = m_nextRun++; next < m_page.runs.size() && !isCancelled();
         next = m_nextRun++) {
        const std::size_t run = m_order[next];
        waitForRound(next, isCancelled);
        if (m_exact && m_exact->hasTaken(run)) {
            endRun(next);
            continue;
        }
        if (!engine)
            engine = m_engines->take();
        if (!engine)
            m_isUnreadable = true;
        if (m_isUnreadable)
            break;
        const bool isFirst = m_roundEnds.empty() || next < m_roundEnds.front();
        if (!(isFirst ? readRun(*engine, run) : readUnknown(*engine, run))) {
            engine = nullptr;
            if (++m_lost > mostEnginesLost)
                m_isUnreadable = true;
        }
        endRun(next);
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
    for (std::size_t i = 0; i < m_readings.size(); ++i) {
        if (m_exact && m_exact->hasTaken(i))
            m_readings[i].clear();
        if (isUnsure(m_page.runs[i], m_readings[i]))
            m_unsure.push_back(i);
    }
    if (m_exact)
        m_exact->improve(m_readings);
    std::vector<std::vector<ReadWord>> lines = linesOf(m_page, std::move(m_readings));
    return m_exact ? withExactLines(std::move(lines), *m_exact, m_exact->lines()) : lines;
}

std::vector<LineStrip> PageReader::unsureLines() const
{
    return stripsOf(m_page, m_unsure);
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
