// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/PageReader.h"

#include "foundation/Log.h"
#include "reading/RunReader.h"

namespace tovek {

namespace {

/// A run that makes its engine end is passed over; with more of them the engine is at fault.
constexpr int mostEnginesLost = 3;

} // namespace

PageReader::PageReader(Page page, std::shared_ptr<EnginePool> engines)
    : m_page(std::move(page))
    , m_engines(std::move(engines))
    , m_readings(m_page.runs.size())
{
}

void PageReader::read(const std::function<bool()> &isCancelled)
{
    std::unique_ptr<LineEngine> engine;
    for (std::size_t next = m_nextRun++; next < m_page.runs.size() && !isCancelled();
         next = m_nextRun++) {
        if (!engine)
            engine = m_engines->take();
        if (!engine)
            m_isUnreadable = true;
        if (m_isUnreadable)
            break;
        if (!readRun(*engine, m_page.widestFirst[next])) {
            engine = nullptr;
            if (++m_lost > mostEnginesLost)
                m_isUnreadable = true;
        }
    }
    if (engine)
        m_engines->giveBack(std::move(engine));
}

std::vector<std::vector<ReadWord>> PageReader::takeLines()
{
    if (m_lost > 0)
        logLine(QStringLiteral("Text recognition left out %1 of %2 lines: its engine hung or "
                               "broke down")
                    .arg(m_lost.load())
                    .arg(m_page.runs.size()));
    return linesOf(m_page, std::move(m_readings));
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
