// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/Wait.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <algorithm>
#include <thread>

namespace tovek {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

bool waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds deadline)
{
    const QDeadlineTimer end(deadline);
    for (;;) {
        const auto asked = Clock::now();
        if (condition())
            return true;
        if (end.hasExpired())
            return false;
        // Whoever is waited for wants the processor too: to look at a screen costs much.
        const std::chrono::nanoseconds pause =
            std::clamp<Clock::duration>(3 * (Clock::now() - asked), 3ms, 50ms);
        if (QCoreApplication::instance())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        std::this_thread::sleep_for(pause);
    }
}

} // namespace tovek
