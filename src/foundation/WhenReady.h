// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QFutureWatcher>
#include <QObject>
#include <QPromise>

#include <utility>

namespace tovek {

/// Calls `use` with the future itself once it has finished: at once when it has already (a posted
/// event would cost the user a turn of the main loop), otherwise on the context's thread, and never
/// when the context died before.
template <typename T, typename Use>
void whenOver(QFuture<T> future, QObject *context, Use use)
{
    if (future.isFinished()) {
        use(future);
        return;
    }
    // Not QFuture::then: a second continuation of one future would replace the first.
    auto *watcher = new QFutureWatcher<T>(context); // deletes itself at the end
    QObject::connect(watcher, &QFutureWatcherBase::finished, context,
                     [watcher, use = std::move(use)]() mutable {
                         watcher->deleteLater();
                         use(watcher->future());
                     });
    watcher->setFuture(future);
}

/// As `whenOver`, with the result, and never for a future without one: it was cancelled.
template <typename T, typename Use>
void whenReady(QFuture<T> future, QObject *context, Use use)
{
    whenOver(future, context, [use = std::move(use)](const QFuture<T> &finished) mutable {
        if (finished.resultCount() > 0)
            use(finished.result());
    });
}

/// As `whenOver`, with the result, or an empty value where there is none.
template <typename T, typename Use>
void whenFinished(QFuture<T> future, QObject *context, Use use)
{
    whenOver(future, context, [use = std::move(use)](const QFuture<T> &finished) mutable {
        use(finished.resultCount() > 0 ? finished.result() : T());
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
