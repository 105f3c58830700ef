// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QDeadlineTimer>
#include <QFuture>
#include <QPromise>
#include <QThread>

#include <functional>
#include <memory>
#include <system_error>
#include <thread>

namespace tovek {

/// Asks something whose answer may never come, as that of a file system whose server stands still,
/// on a thread of its own for which nobody ever waits, the end of the process included. The
/// question may use only what it holds itself. Without a result when there is no memory for a
/// thread.
template <typename T>
QFuture<T> askAside(std::function<T()> question)
{
    const auto promise = std::make_shared<QPromise<T>>();
    promise->start();
    const QFuture<T> answer = promise->future();
    try {
        std::thread([promise, question = std::move(question)] {
            promise->addResult(question());
            promise->finish();
        }).detach();
    } catch (const std::system_error &) {
        promise->finish();
    }
    return answer;
}

/// True once the future is finished; false at the end of the time.
template <typename T>
bool isFinishedWithin(std::chrono::milliseconds limit, const QFuture<T> &future)
{
    const QDeadlineTimer deadline(limit);
    while (!future.isFinished()) {
        if (deadline.hasExpired())
            return false;
        QThread::usleep(200);
    }
    return true;
}

} // namespace tovek
