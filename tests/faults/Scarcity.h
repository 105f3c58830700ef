// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <atomic>
#include <cstddef>

namespace tovek {

/// What a program gets, in memory that it shares with the test that says so.
struct ScarcityOrders
{
    std::atomic<std::size_t> leastRefused = 0; ///< bytes in one piece; 0: none
    std::atomic<bool> hasNoThreads = false;
};

} // namespace tovek
