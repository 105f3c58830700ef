// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/Wait.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

namespace tovek {

bool waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds deadline)
{
    const QDeadlineTimer end(deadline);
    while (!condition()) {
        if (end.hasExpired())
            return false;
        if (QCoreApplication::instance())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        QThread::usleep(3000);
    }
    return true;
}

} // namespace tovek
