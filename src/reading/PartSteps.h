// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>

namespace tovek {

/// When the words that have been read of a page are told, though others are still missing. Only
/// what takes long is told in parts. Times count from when the page was asked for.
class PartSteps
{
public:
    using Time = std::chrono::milliseconds;

    /// `share`: of the page, what has been read, from 0 to 1.
    bool isDue(Time now, double share) const;
    /// A part was made between these times.
    void made(Time from, Time to);

private:
    static constexpr Time firstStep{300};
    static constexpr Time step{250};
    Time m_next = firstStep;
};

} // namespace tovek
