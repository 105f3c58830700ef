// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <functional>

namespace tovek {

/// What the session says of its end at the screen: it is about to be locked, its screen saver comes
/// up, the machine goes to sleep. A desktop may say nothing. Main thread only.
class LockSignals
{
public:
    virtual ~LockSignals() = default;
    std::function<void()> onLocking;
};

} // namespace tovek
