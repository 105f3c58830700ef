// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Unfinished.h"

#include <atomic>
#include <thread>

namespace tovek {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds pollInterval(1);

// Without a destructor: it is asked when the process takes its globals down.
constinit std::atomic<int> unfinishedCount = 0;

} // namespace

Unfinished::Unfinished()
{
    ++unfinishedCount;
}

Unfinished::~Unfinished()
{
    --unfinishedCount;
}

bool Unfinished::waitForAll(std::chrono::milliseconds limit)
{
    const auto end = Clock::now() + limit;
    while (unfinishedCount > 0) {
        if (Clock::now() >= end)
            return false;
        std::this_thread::sleep_for(pollInterval);
    }
    return true;
}

} // namespace tovek
