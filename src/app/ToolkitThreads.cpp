// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/ToolkitThreads.h"

#include <QDeadlineTimer>
#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <atomic>
#include <memory>

namespace tovek {

namespace {

constexpr int mostThreads = 4;
constexpr std::chrono::seconds startLimit(1);

} // namespace

void keepToolkitThreads()
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    qputenv("QT_NO_GUI_THREADPOOL", "1");
#endif
#if QT_VERSION < QT_VERSION_CHECK(6, 8, 0)
    QThreadPool &pool = *QThreadPool::globalInstance();
    const int count = std::min(pool.maxThreadCount(), mostThreads);
    pool.setMaxThreadCount(count);
    pool.setExpiryTimeout(-1);
    // A thread that has nothing to do would take the next job as well.
    const auto started = std::make_shared<std::atomic<int>>(0);
    for (int i = 0; i < count; ++i) {
        pool.start([started, count] {
            ++*started;
            const QDeadlineTimer limit(startLimit);
            while (*started < count && !limit.hasExpired())
                QThread::msleep(1);
        });
    }
#endif
}

} // namespace tovek
