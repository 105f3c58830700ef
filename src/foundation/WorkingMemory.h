// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <vector>

namespace tovek {

/// The code, constants and fonts that work needs and waiting does not: for a program that works
/// for seconds and then may wait for hours. One thread at a time.
class WorkingMemory
{
public:
    /// Lets go of them, and gives back what is free of the heap. The system keeps the files' pages
    /// in its cache as long as it has nothing better to do with them. Takes a few milliseconds.
    void release();
    /// Takes back what each `release` since the last time let go of, on a thread of its own: work
    /// that begins meanwhile takes back what it needs by itself, only later.
    void recall();

private:
    struct Range
    {
        std::uintptr_t begin, end;
    };
    std::vector<Range> m_released; ///< and not recalled
};

} // namespace tovek
