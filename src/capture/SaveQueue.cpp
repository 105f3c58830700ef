// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/SaveQueue.h"

#include "foundation/Log.h"
#include "foundation/Unfinished.h"

#include <QThreadPool>

namespace tovek {

namespace {

constexpr int idleThreadMs = 2000;
constexpr std::chrono::seconds writingLimit(5);
constexpr int syncLimitMs = 1000; ///< the files are there by then

} // namespace

SaveQueue::SaveQueue() : m_threads(std::make_unique<QThreadPool>())
{
    m_threads->setMaxThreadCount(1);
    m_threads->setExpiryTimeout(idleThreadMs);
}

SaveQueue::~SaveQueue()
{
    const bool isWritten = Unfinished::waitForAll(writingLimit);
    if (!isWritten)
        logLine(QStringLiteral("Gave up a save: its folder does not answer"));
    // Its own end would wait for its threads without a limit.
    if (!m_threads->waitForDone(isWritten ? syncLimitMs : 0))
        static_cast<void>(m_threads.release());
}

void SaveQueue::start(std::function<void()> job)
{
    m_threads->start(std::move(job));
}

void SaveQueue::letOthersPass()
{
    m_threads->setMaxThreadCount(m_threads->maxThreadCount() + 1);
}

void SaveQueue::stopLettingOthersPass()
{
    m_threads->setMaxThreadCount(m_threads->maxThreadCount() - 1);
}

} // namespace tovek
