// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QFuture>

#include <functional>

namespace tovek {

/// How the desktop wants windows to look.
struct WindowTheme
{
    bool isDark = false;
    QColor accent; ///< of what is chosen, switched on or has the keyboard; invalid: none is named

    bool operator==(const WindowTheme &) const = default;
};

/// The colours that the desktop wants, where it does not tell the toolkit. Main thread only.
class WindowColors
{
public:
    virtual ~WindowColors() = default;
    /// Asks the desktop. May wait for a moment.
    virtual WindowTheme theme() const = 0;
    /// The same, without waiting here.
    virtual QFuture<WindowTheme> ask() const = 0;
    /// The answer may be another one from now on.
    std::function<void()> onChanged;
};

} // namespace tovek
