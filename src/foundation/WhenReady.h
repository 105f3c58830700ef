// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QFutureWatcher>
#include <QObject>
#include <QPromise>

#include <utility>

namespace tovek {

/// Calls `use` with the future's result: at once when it is there already (a posted event would
/// cost the user a turn of the main loop), otherwise on the context's thread when it arrives, and
/// never when the context died before or the future was cancelled.
template <typename T, typename Use>
void whenReady(QFuture<T> future, QObject *context, Use use)
{
    if (future.isFinished()) {
        if (future.resultCount() > 0)
            use(future.result());
        return;
    }
    // Not QFuture::then: a second continuation of one future would replace the first.
    auto *watcher = new QFutureWatcher<T>(context);
    QObject::connect(watcher, &QFutureWatcherBase::finished, context,
                     [watcher, use = std::move(use)]() mutable {
                         watcher->deleteLater();
                         const QFuture<T> finished = watcher->future();
                         if (finished.resultCount() > 0)
                             use(finished.result());
                     });
    watcher->setFuture(future);
}

/// A future that has its result.
template <typename T>
QFuture<T> readyFuture(T value)
{
    QPromise<T> promise;
    promise.start();
    promise.addResult(std::move(value));
    promise.finish();
    return promise.future();
}

} // namespace tovek
