// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QSize>

#include <functional>
#include <memory>

class QWindow;

namespace tovek {

/// A window of ours in a corner of a screen, above all others. It takes the pointer inside itself
/// and nothing else, never the keyboard. Main thread only; the window must outlive it.
class PreviewSurface
{
public:
    virtual ~PreviewSurface() = default;
    virtual void orderFront() = 0;
    /// No picture of the screen taken from now on shows it; waits for that, some milliseconds.
    virtual void orderOut() = 0;
    /// Prepares the window of a menu, made and not shown yet, to open beside this one when it is
    /// shown right afterwards: at a click, while the button was just let go. False when that
    /// cannot be.
    [[nodiscard]] virtual bool placeMenu(QWindow &menu, QSize points) = 0;
    /// The menu's window is about to be hidden.
    virtual void releaseMenu() = 0;

    /// The user clicked somewhere else: the menu has to go.
    std::function<void()> onMenuDismissed;
    /// It was taken off the screen.
    std::function<void()> onClosed;
};

/// Makes such windows where the desktop's panel lets nothing be dragged out of it. Main thread
/// only.
class PreviewShell
{
public:
    virtual ~PreviewShell() = default;
    /// The window must have been made without being shown; it is given its size, in points. Null
    /// when it cannot be shown.
    virtual std::unique_ptr<PreviewSurface> create(QWindow &window, QSize points) = 0;
};

} // namespace tovek
