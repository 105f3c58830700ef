// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QFuture>
#include <QPromise>

#include <chrono>
#include <functional>
#include <memory>

namespace tovek {

/// Threads that take jobs in the order of the calls, and end when there has been none for a while.
///
/// No job is lost in silence, as a QThreadPool loses those that the system gives no thread for: a
/// job that cannot run, or that runs out of memory, is destroyed, and the promise that it holds
/// ends without a result. Jobs may be given from any thread.
class Workers
{
public:
    explicit Workers(int mostThreads, std::chrono::milliseconds idleTime = std::chrono::seconds(2));
    /// Waits for every job.
    ~Workers();
    Workers(const Workers &) = delete;
    Workers &operator=(const Workers &) = delete;

    /// False when the system gives no thread and there is none that could run it later.
    bool start(std::function<void()> job);
    /// What the work makes; nothing when it could not run or ran out of memory.
    template <typename T>
    QFuture<T> run(std::function<T()> work)
    {
        const auto promise = std::make_shared<QPromise<T>>();
        promise->start();
        const QFuture<T> future = promise->future();
        start([promise, work = std::move(work)] {
            promise->addResult(work());
            promise->finish();
        });
        return future;
    }

    int mostThreads() const;
    /// A larger number starts what waits.
    void setMostThreads(int count);
    /// Jobs that run now.
    int active() const;
    /// Drops the jobs that have not begun.
    void clear();
    /// False when there still was one at the limit.
    bool waitForAll(std::chrono::milliseconds limit);
    /// From now on nobody waits for them, the destructor included.
    void leaveBehind() { m_isLeftBehind = true; }

private:
    struct State;

    std::shared_ptr<State> m_state; ///< the threads' too, which may outlive this
    bool m_isLeftBehind = false;
};

} // namespace tovek
