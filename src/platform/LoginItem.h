// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace tovek {

/// Whether the desktop starts this program when the user logs in. The desktop is the only one who
/// knows; nothing is kept. Main thread only.
class LoginItem
{
public:
    virtual ~LoginItem() = default;
    /// That it starts another program does not count.
    virtual bool isEnabled() const = 0;
    /// The reason when that failed; absent when it is done. Enabling what is enabled is no failure.
    [[nodiscard]] virtual std::optional<QString> setEnabled(bool isEnabled) = 0;

    /// Has the desktop start this program where it would start one that is gone: it was moved. The
    /// reason when that failed.
    [[nodiscard]] virtual std::optional<QString> mend() { return std::nullopt; }

    /// Somebody else may have changed it. Called only while it is set.
    std::function<void()> onChanged;
    /// Begins or ends calling `onChanged`.
    virtual void setWatching(bool isOn) = 0;
};

} // namespace tovek
