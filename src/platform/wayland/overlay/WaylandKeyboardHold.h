// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/KeyboardHold.h"
#include "platform/wayland/WaylandConnection.h"

struct zwp_keyboard_shortcuts_inhibit_manager_v1;
struct zwp_keyboard_shortcuts_inhibitor_v1;

namespace tovek {

/// Asks the compositor to leave its own shortcuts alone while a window has the keyboard.
class WaylandKeyboardHold : public KeyboardHold
{
public:
    /// Null where the toolkit runs on something else, or the compositor cannot be asked.
    static std::unique_ptr<WaylandKeyboardHold> create();
    ~WaylandKeyboardHold() override;

    void hold(QWindow *window) override;

private:
    explicit WaylandKeyboardHold(std::shared_ptr<WaylandConnection> connection);

    std::shared_ptr<WaylandConnection> m_connection;
    zwp_keyboard_shortcuts_inhibit_manager_v1 *m_manager;
    wl_seat *m_seat;
    zwp_keyboard_shortcuts_inhibitor_v1 *m_inhibitor = nullptr;
};

} // namespace tovek
