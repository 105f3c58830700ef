// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QRect>
#include <QString>
#include <QtGlobal>

#include <optional>

class QWindow;

namespace tovek {

/// A program with a window, as far as it matters for giving the focus back.
struct RunningApplication
{
    quint64 window = 0; ///< the window that was active
    quint64 focus = 0; ///< the window that had the keyboard, where that is another one
    qint64 processId = 0;

    bool operator==(const RunningApplication &) const = default;
};

/// Whether our windows show in the taskbar.
enum class ActivationPolicy { accessory, regular };

/// The active program. Main thread only.
class FrontmostApp
{
public:
    virtual ~FrontmostApp() = default;
    virtual std::optional<RunningApplication> frontmost() const = 0;
    /// The active window with its frame and without its shadow: native pixels, y down, global.
    /// Absent where none is active, or the window system does not tell.
    virtual std::optional<QRect> activeWindowFrame() const { return std::nullopt; }
    /// Does nothing when the program is active still, or its window has gone.
    virtual void activate(const RunningApplication &application) = 0;
    virtual void setActivationPolicy(ActivationPolicy policy) = 0;
    virtual ActivationPolicy activationPolicy() const = 0;
    /// Brings one of our ordinary windows to the front of the current desktop, with the keyboard.
    virtual void bringForward(QWindow &window) = 0;
    /// A number by which another program can lay its window before one of ours; 0 where windows
    /// have none.
    virtual quint64 sharedHandle(const QWindow &) const { return 0; }
};

} // namespace tovek
