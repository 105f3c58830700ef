// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/PartSteps.h"

#include <algorithm>

namespace tovek {

namespace {

/// Times as long as it took to make a part, none is made: the page must not take longer for them.
constexpr int restAfterPart = 12;

} // namespace

bool PartSteps::isDue(Time now, double share) const
{
    // What comes as soon as the next part would comes all at once.
    const double left = share > 0 ? double(now.count()) * (1 - share) / share : 0;
    return now >= m_next && left >= double(step.count());
}

void PartSteps::made(Time from, Time to)
{
    m_next = std::max(from + step, to + restAfterPart * (to - from));
}

} // namespace tovek
