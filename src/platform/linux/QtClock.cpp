// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/QtClock.h"

#include <QTimer>

namespace tovek {

void QtClock::after(std::chrono::milliseconds delay, QObject *context, std::function<void()> call)
{
    if (delay.count() == 0) {
        QTimer::singleShot(0, context, std::move(call));
        return;
    }
    // A child dies with its context; QTimer::singleShot would wake the process to find it dead.
    auto *timer = new QTimer(context);
    timer->setSingleShot(true);
    // Coarse timers may be 5 % off, which shows in delays of 20 ms.
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer, &QTimer::timeout, context, [timer, call = std::move(call)] {
        timer->deleteLater();
        call();
    });
    timer->start(delay);
}

} // namespace tovek
