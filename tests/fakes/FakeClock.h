// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Clock.h"

#include <QPointer>

#include <vector>

namespace tovek {

/// Time stands still until the test moves it.
class FakeClock : public Clock
{
public:
    QDateTime now() const override { return m_now; }
    void after(std::chrono::milliseconds delay, QObject *context,
               std::function<void()> call) override;

    void setNow(const QDateTime &now) { m_now = now; }
    /// Runs what falls due on the way, in order of time, then of scheduling.
    void advance(std::chrono::milliseconds time);
    size_t pendingCalls() const { return m_calls.size(); }

private:
    struct Call
    {
        std::chrono::milliseconds due;
        quint64 serial;
        QPointer<QObject> context;
        std::function<void()> function;
    };

    QDateTime m_now{QDate(2025, 3, 7), QTime(14, 5, 9)};
    std::chrono::milliseconds m_elapsed{0};
    quint64 m_serial = 0;
    std::vector<Call> m_calls;
};

} // namespace tovek
