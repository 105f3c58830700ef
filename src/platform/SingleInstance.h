// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <functional>

namespace tovek {

/// One running program per session, and commands to it from outside. Main thread only.
class SingleInstance
{
public:
    enum class Role { first, second, alone };

    virtual ~SingleInstance() = default;
    /// `first`: this process is the program now. `second`: another one is. `alone`: the session
    /// has no bus to find out; nothing arrives from outside.
    virtual Role claim() = 0;
    /// Asks the program that is there already to reopen, as `second`.
    virtual void reopenFirst() = 0;
    /// Asks it for one of the actions below, as `second`. The reason when it could not be asked,
    /// otherwise an empty text.
    [[nodiscard]] virtual QString askFirst(const QString &action, int delaySeconds) = 0;

    /// The program was launched again.
    std::function<void()> onReopen;
    /// One of start-capture, capture-image, capture-text, preferences, about, check-for-updates,
    /// quit; anything else is refused before it gets here. The delay, 0 for most, is for captures.
    std::function<void(const QString &action, int delaySeconds)> onAction;
};

} // namespace tovek
