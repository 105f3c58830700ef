// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace tovek {

class Clock;

/// Counts down the seconds before something happens. One at a time: another one takes the place of
/// what was counted before. Main thread only.
class CaptureCountdown
{
public:
    explicit CaptureCountdown(Clock &clock);

    /// Tells each of the seconds that are left, the first at once.
    void start(int seconds, std::function<void()> then);

    std::function<void(const QString &message)> tell;

private:
    void count(int seconds, std::function<void()> then);

    Clock &m_clock;
    std::unique_ptr<QObject> m_counting; ///< what is to come dies with it
};

} // namespace tovek
