// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/SaveQueue.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/Unfinished.h"

namespace tovek {

namespace {

constexpr std::chrono::seconds writingLimit(5);
constexpr std::chrono::seconds syncLimit(1); ///< the files are there by then

} // namespace

SaveQueue::SaveQueue() : m_threads(1) { }

SaveQueue::~SaveQueue()
{
    Q_ASSERT(isMainThread());
    const bool isWritten = Unfinished::waitForAll(writingLimit);
    if (!isWritten)
        logLine(QStringLiteral("Gave up a save: its folder does not answer"));
    // Its own end would wait for its threads without a limit.
    if (!m_threads.waitForAll(isWritten ? syncLimit : std::chrono::seconds(0)))
        m_threads.leaveBehind();
}

bool SaveQueue::start(std::function<void()> job)
{
    Q_ASSERT(isMainThread());
    return m_threads.start(std::move(job));
}

void SaveQueue::letOthersPass()
{
    m_threads.setMostThreads(m_threads.mostThreads() + 1);
}

void SaveQueue::stopLettingOthersPass()
{
    m_threads.setMostThreads(m_threads.mostThreads() - 1);
}

} // namespace tovek
