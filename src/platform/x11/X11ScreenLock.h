// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

struct xcb_connection_t;

namespace tovek {

/// True when the topmost window that takes input covers a whole monitor: what screen lockers do,
/// whichever they are, and open menus do not. Meant for when another program holds the keyboard.
bool isTopmostWindowCovering(xcb_connection_t *connection);

} // namespace tovek
