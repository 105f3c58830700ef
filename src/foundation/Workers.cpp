// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Workers.h"

#include "foundation/Log.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>

namespace tovek {

namespace {

using Job = std::function<void()>;

/// The job, and what it holds, ends here.
void carryOut(Job &&given)
{
    const Job job = std::move(given);
    try {
        job();
    } catch (const std::bad_alloc &) {
        logLine(QStringLiteral("There is not enough memory"));
    }
}

} // namespace

struct Workers::State
{
    bool hasWork() const { return !jobs.empty() && active < most; }
    bool isDone() const { return jobs.empty() && active == 0; }
    void work();
    /// With the mutex held. False when the system gives no thread.
    static bool addThread(const std::shared_ptr<State> &state);

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Job> jobs;
    int most = 1;
    std::chrono::milliseconds idleTime{};
    int threads = 0;
    int idle = 0;
    int active = 0;
    bool isEnding = false;
};

void Workers::State::work()
{
    std::unique_lock lock(mutex);
    while (true) {
        ++idle;
        changed.wait_for(lock, idleTime, [this] { return isEnding || hasWork(); });
        --idle;
        if (!hasWork())
            break;
        Job job = std::move(jobs.front());
        jobs.pop_front();
        ++active;
        lock.unlock();
        carryOut(std::move(job));
        lock.lock();
        --active;
        changed.notify_all();
    }
    --threads;
}

bool Workers::State::addThread(const std::shared_ptr<State> &state)
{
    try {
        std::thread([state] { state->work(); }).detach();
    } catch (const std::system_error &) {
        return false;
    } catch (const std::bad_alloc &) {
        return false;
    }
    ++state->threads;
    return true;
}

Workers::Workers(int mostThreads, std::chrono::milliseconds idleTime)
    : m_state(std::make_shared<State>())
{
    m_state->most = mostThreads;
    m_state->idleTime = idleTime;
}

Workers::~Workers()
{
    std::unique_lock lock(m_state->mutex);
    if (!m_isLeftBehind)
        m_state->changed.wait(lock, [this] { return m_state->isDone(); });
    m_state->isEnding = true;
    m_state->changed.notify_all();
}

bool Workers::start(Job job)
{
    // Destroyed without the mutex: whoever waits for what a job promised hears of it then.
    const std::lock_guard lock(m_state->mutex);
    try {
        m_state->jobs.push_back(std::move(job));
    } catch (const std::bad_alloc &) {
        return false;
    }
    if (int(m_state->jobs.size()) > m_state->idle && m_state->threads < m_state->most
        && !State::addThread(m_state) && m_state->threads == 0) {
        job = std::move(m_state->jobs.back());
        m_state->jobs.pop_back();
        logLine(QStringLiteral("The system gives no thread"));
        return false;
    }
    m_state->changed.notify_all();
    return true;
}

int Workers::mostThreads() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->most;
}

void Workers::setMostThreads(int count)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->most = count;
    if (m_state->hasWork() && m_state->idle == 0 && m_state->threads < count)
        State::addThread(m_state); // otherwise it waits for one of those that there are
    m_state->changed.notify_all();
}

int Workers::active() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->active;
}

void Workers::clear()
{
    std::deque<Job> dropped;
    const std::lock_guard lock(m_state->mutex);
    dropped.swap(m_state->jobs);
    m_state->changed.notify_all();
}

bool Workers::waitForAll(std::chrono::milliseconds limit)
{
    std::unique_lock lock(m_state->mutex);
    return m_state->changed.wait_for(lock, limit, [this] { return m_state->isDone(); });
}

} // namespace tovek
