// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QtGlobal>

#include <chrono>
#include <map>

namespace tovek {

/// Tells a held key's repeated presses from new ones, where the system reports both alike and a
/// release may be missing because another key came in between.
class KeyRepeatFilter
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /// True for the first press of a key.
    bool press(quint32 id, Time now = std::chrono::steady_clock::now());
    /// False when no press was told that this could be the end of.
    bool release(quint32 id) { return m_held.erase(id) > 0; }

private:
    std::map<quint32, Time> m_held; ///< with the last press of each
};

} // namespace tovek
