// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/PageParts.h"

#include "reading/ExactLines.h"

#include <algorithm>

namespace tovek {

namespace {

/// Words that cover others which have been told already would come on top of them.
void dropTold(std::vector<std::vector<ReadWord>> &lines, const std::vector<QRect> &told)
{
    for (std::vector<ReadWord> &line : lines) {
        std::erase_if(line, [&told](const ReadWord &word) {
            return std::any_of(told.begin(), told.end(),
                               [&word](const QRect &box) { return box.intersects(word.box); });
        });
    }
}

} // namespace

PageParts::PageParts(const Page &page, const std::vector<std::vector<ReadPiece>> &readings,
                     const ExactReading *exact, Listener listener)
    : m_page(page)
    , m_readings(readings)
    , m_exact(exact)
    , m_listener(std::move(listener))
{
    for (const PageRun &run : page.runs)
        m_width += run.text.box.width();
}

void PageParts::add(std::size_t run)
{
    const std::lock_guard lock(m_mutex);
    m_untold.push_back(run);
    m_widthRead += m_page.runs[run].text.box.width();
}

void PageParts::tell()
{
    const std::unique_lock telling(m_telling, std::try_to_lock);
    if (!telling)
        return;
    const PartSteps::Time begun = m_listener.now();
    const double share = [this] {
        const std::lock_guard lock(m_mutex);
        return m_widthRead / m_width;
    }();
    if (!m_steps.isDue(begun, share))
        return;
    std::vector<std::vector<ReadWord>> lines = takeLines();
    m_steps.made(begun, m_listener.now());
    if (!lines.empty())
        m_listener.tell(std::move(lines));
}

std::vector<std::vector<ReadPiece>> PageParts::takeReadings(bool isExactOver)
{
    std::vector<std::vector<ReadPiece>> readings(m_readings.size());
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_untold, [&](std::size_t run) {
        // Whether it is read without the engine is not known yet.
        if (m_exact && !isExactOver && m_exact->mayTake(run))
            return false;
        if (!m_exact || !m_exact->hasTaken(run))
            readings[run] = m_readings[run];
        return true;
    });
    return readings;
}

std::vector<std::vector<ReadWord>> PageParts::takeLines()
{
    const bool isExactOver = m_isExactOver;
    std::vector<std::vector<ReadWord>> lines = linesOf(m_page, takeReadings(isExactOver));
    if (m_exact && !isExactOver) {
        for (const std::vector<ReadWord> &line : lines) {
            for (const ReadWord &word : line)
                m_told.push_back(word.box);
        }
    } else if (m_exact) {
        std::vector<std::vector<ReadWord>> exact;
        if (!std::exchange(m_hasToldExact, true))
            exact = m_exact->lines();
        dropTold(exact, m_told);
        m_told.clear();
        lines = withExactLines(std::move(lines), *m_exact, std::move(exact));
    }
    return lines;
}

} // namespace tovek
