// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/CaptureCountdown.h"

#include "foundation/MainThread.h"
#include "platform/Clock.h"

namespace tovek {

using namespace std::chrono_literals;

CaptureCountdown::CaptureCountdown(Clock &clock) : m_clock(clock) { }

void CaptureCountdown::start(int seconds, std::function<void()> then)
{
    Q_ASSERT(isMainThread());
    m_counting = std::make_unique<QObject>();
    count(seconds, std::move(then));
}

void CaptureCountdown::count(int seconds, std::function<void()> then)
{
    if (seconds == 0) {
        then();
        return;
    }
    if (tell)
        tell(QStringLiteral("Capture in %1 s").arg(seconds));
    m_clock.after(1s, m_counting.get(),
                  [this, seconds, then = std::move(then)] { count(seconds - 1, then); });
}

} // namespace tovek
