// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>

namespace tovek {

/// Work on another thread that must not be cut short, for as long as this lives, even when the
/// process has to end without taking anything down in order. Any thread.
class Unfinished
{
public:
    Unfinished();
    ~Unfinished();
    Unfinished(const Unfinished &) = delete;
    Unfinished &operator=(const Unfinished &) = delete;

    /// Waits until there is none. False when there was still some at the limit.
    static bool waitForAll(std::chrono::milliseconds limit);
};

} // namespace tovek
