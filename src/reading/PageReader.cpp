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
        if (m_exact && m_exact->hasTaken(run))
            continue;
        if (!engine)
            engine = m_engines->take();
        if (!engine)
            m_isUnreadable = true;
        if (m_isUnreadable)
            break;
        if (!readRun(*engine, run)) {
            engine = nullptr;
            if (++m_lost > mostEnginesLost)
                m_isUnreadable = true;
        }
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
    std::erase_if(lines, [](const auto &line) { return line.empty(); });
    for (std::vector<ReadWord> &line : m_exact->takeLines())
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

} // namespace tovek
