// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>
#include <QRect>
#include <QString>

#include <memory>

namespace tovek {

/// A borderless picture above all other windows and on every desktop. It never takes the keyboard,
/// and the pointer passes through it. Main thread only. Destroying it orders it out.
class ToastWindow
{
public:
    virtual ~ToastWindow() = default;
    /// Shows the window above everything, without activating the program.
    virtual void orderFront() = 0;
    /// Replaces what the window shows. The picture has the window's size in native pixels and is
    /// Format_ARGB32_Premultiplied; see ToastShell::blends.
    virtual void present(const QImage &picture) = 0;
    /// Takes the window off the screen so that no picture of the screen taken from now on shows
    /// it; waits for the window system, some milliseconds at most. `empty` is the window's picture
    /// without a toast in it.
    virtual void vanish(const QImage &empty) = 0;
};

/// Makes toast windows. Main thread only.
class ToastShell
{
public:
    virtual ~ToastShell() = default;
    /// A window over this rectangle (native pixels, y down, global). The title is for assistive
    /// programs; it is shown nowhere.
    virtual std::unique_ptr<ToastWindow> create(QRect native, const QString &title) = 0;
    /// True where what lies below shines through a transparent pixel. Otherwise a picture must
    /// bring along the pixels that lie below.
    virtual bool blends() const = 0;
    /// What the screen shows in this rectangle (native pixels, y down, global) at this moment.
    /// Black where there is no screen; a null image where the window system does not tell.
    virtual QImage pixelsBelow(QRect native) = 0;
};

} // namespace tovek
