// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/KeyRepeatFilter.h"

namespace tovek {

namespace {

/// More than any keyboard waits before it repeats a key.
constexpr std::chrono::milliseconds longestDelay(1100);

} // namespace

bool KeyRepeatFilter::press(quint32 id, Time now)
{
    const auto found = m_held.find(id);
    const bool isRepeated = found != m_held.end() && now - found->second < longestDelay;
    m_held.insert_or_assign(id, now);
    return !isRepeated;
}

} // namespace tovek
