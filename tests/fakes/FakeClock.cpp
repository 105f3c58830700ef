// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeClock.h"

#include <algorithm>

namespace tovek {

void FakeClock::after(std::chrono::milliseconds delay, QObject *context, std::function<void()> call)
{
    m_calls.push_back({m_elapsed + delay, m_serial++, context, std::move(call)});
}

void FakeClock::advance(std::chrono::milliseconds time)
{
    const auto end = m_elapsed + time;
    while (true) {
        const auto next =
            std::min_element(m_calls.begin(), m_calls.end(), [](const Call &a, const Call &b) {
                return std::pair(a.due, a.serial) < std::pair(b.due, b.serial);
            });
        if (next == m_calls.end() || next->due > end)
            break;
        const Call call = std::move(*next);
        m_calls.erase(next);
        m_now = m_now.addMSecs((call.due - m_elapsed).count());
        m_elapsed = call.due;
        if (call.context)
            call.function();
    }
    m_now = m_now.addMSecs((end - m_elapsed).count());
    m_elapsed = end;
}

} // namespace tovek
