// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QRect>

#include <optional>
#include <vector>
#include <xcb/xcb.h>

namespace tovek {

/// What windows of other programs are, as far as the server can tell. Each question takes some
/// round trips.
class X11ForeignWindows
{
public:
    explicit X11ForeignWindows(xcb_connection_t *connection) : m_connection(connection) { }

    struct Window
    {
        QRect rect;
        bool isSeen = true; ///< false for a window that only takes input
        bool isUnmanaged = false; ///< or a frame that a window manager made
    };
    /// Absent for a window that is not on the screen.
    std::optional<Window> viewable(xcb_window_t window) const;
    /// The windows on the root window, bottom to top.
    std::vector<xcb_window_t> all() const;
    std::vector<QRect> monitors() const;
    /// Whether it covers a whole monitor, as good as.
    static bool covers(const Window &window, const std::vector<QRect> &monitors);
    /// False for the window that a compositing manager draws on: it lies over everything, but
    /// clicks fall through it.
    bool takesInput(xcb_window_t window) const;
    /// Whether the window says that it is one of these kinds, as in _NET_WM_WINDOW_TYPE_MENU.
    bool isOfType(xcb_window_t window, const std::vector<const char *> &kinds) const;
    bool hasType(xcb_window_t window) const;
    /// A window manager's frame, or a window that it manages without one.
    bool isManaged(xcb_window_t window) const;
    /// Made by the program that this connection belongs to.
    bool isOurs(xcb_window_t window) const;

    /// Made by the server itself: what a compositing manager draws on, and its own screen saver.
    bool isTheServers(xcb_window_t window) const;

    /// What a screen locker puts up, whichever it is: an unmanaged window over a whole monitor,
    /// with the input for itself. No window manager's frame, whatever fills that.
    bool looksLikeALocker(xcb_window_t window) const;
    /// Whether something on the screen looks like an open menu. What holds the keyboard without
    /// one is a question for a password, or a program that fills the screen.
    bool isAMenuOpen() const;

private:
    xcb_atom_t atom(const QByteArray &name) const;
    std::vector<xcb_atom_t> types(xcb_window_t window) const;
    bool hasState(xcb_window_t window, int depth) const;

    xcb_connection_t *m_connection;
};

} // namespace tovek
