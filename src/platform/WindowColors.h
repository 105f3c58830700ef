// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QFuture>

#include <functional>

namespace tovek {

/// Whether the desktop wants dark windows, where it does not tell the toolkit. Main thread only.
class WindowColors
{
public:
    virtual ~WindowColors() = default;
    /// Asks the desktop. May wait for a moment.
    virtual bool areDark() const = 0;
    /// The same, without waiting here.
    virtual QFuture<bool> ask() const = 0;
    /// The answer may be another one from now on.
    std::function<void()> onChanged;
};

} // namespace tovek
