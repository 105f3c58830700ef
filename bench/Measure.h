// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

namespace tovek::bench {

/// Milliseconds that one call takes.
template <typename Call>
double millisecondsOf(const Call &call)
{
    const auto start = std::chrono::steady_clock::now();
    call();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    return time.count();
}

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace tovek::bench
