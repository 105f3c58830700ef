// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Clock.h"

namespace tovek {

/// The system's time and the main loop's timers.
class QtClock : public Clock
{
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
    void after(std::chrono::milliseconds delay, QObject *context,
               std::function<void()> call) override;
};

} // namespace tovek
