// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QFuture>
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
    future.then(context, [use = std::move(use)](QFuture<T> finished) mutable {
        if (finished.resultCount() > 0)
            use(finished.result());
    });
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
