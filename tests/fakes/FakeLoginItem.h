// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/LoginItem.h"

namespace tovek {

/// A desktop that starts the program, refuses to, or is changed by somebody else.
class FakeLoginItem : public LoginItem
{
public:
    bool isEnabled() const override { return isOn; }
    [[nodiscard]] std::optional<QString> setEnabled(bool isEnabled) override
    {
        if (!failure.isEmpty())
            return failure;
        isOn = isEnabled;
        return std::nullopt;
    }
    void setWatching(bool isWatching) override { watches = isWatching; }
    /// Somebody else changes it.
    void change(bool isEnabled)
    {
        isOn = isEnabled;
        if (watches && onChanged)
            onChanged();
    }

    bool isOn = false;
    bool watches = false;
    QString failure; ///< the reason that every change fails with
};

} // namespace tovek
