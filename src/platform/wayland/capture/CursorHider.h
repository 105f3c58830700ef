// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/WaylandOutputs.h"

namespace tovek {

/// Takes the mouse cursor off the screen for a moment. Compositors of wlroots leave out of a
/// picture only a cursor that the graphics hardware draws; one that they draw themselves, as in
/// virtual machines and with some drivers, is part of it. So a clear surface is laid over each
/// output, and the pointer that comes to one of them is given no cursor. Main thread only.
class CursorHider
{
public:
    /// Null where the compositor lacks what it takes.
    static std::unique_ptr<CursorHider> create(std::shared_ptr<WaylandConnection> connection);
    ~CursorHider();

    /// Hides it until `show`. Waits until the compositor has carried that out; not long, should
    /// there be no pointer, or an open menu that keeps it.
    void hide(const std::vector<WaylandOutput> &outputs);
    void show();
    /// True when the compositor has never given a surface of ours the pointer, in three tries:
    /// Hyprland (0.56) leaves it where it is until the mouse moves. Waiting is in vain, then.
    bool isInVain() const;

private:
    struct Globals;
    struct Veil;
    CursorHider(std::shared_ptr<WaylandConnection> connection, std::unique_ptr<Globals> globals);

    std::shared_ptr<WaylandConnection> m_connection;
    std::unique_ptr<Globals> m_globals;
    std::vector<std::unique_ptr<Veil>> m_veils;
    bool m_hasWorked = false;
    int m_misses = 0; ///< before it was hidden for the first time
};

} // namespace tovek
