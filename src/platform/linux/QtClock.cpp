// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/QtClock.h"

#include <QTimer>

namespace tovek {

void QtClock::after(std::chrono::milliseconds delay, QObject *context, std::function<void()> call)
{
    // Coarse timers may be 5 % off, which shows in delays of 20 ms.
    QTimer::singleShot(delay, Qt::PreciseTimer, context, std::move(call));
}

} // namespace tovek
