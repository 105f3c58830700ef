// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QDateTime>

#include <chrono>
#include <functional>

class QObject;

namespace tovek {

/// The time of day and delayed calls, so that no test of a rule or a controller has to sleep.
/// Main thread only.
class Clock
{
public:
    virtual ~Clock() = default;
    /// Local time.
    virtual QDateTime now() const = 0;
    /// Calls back once from the main loop, never from inside this call, also for a delay of 0.
    /// The call is dropped when `context` dies first.
    virtual void after(std::chrono::milliseconds delay, QObject *context,
                       std::function<void()> call) = 0;
};

} // namespace tovek
