// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

struct xcb_connection_t;

namespace tovek {

/// True when the topmost window that takes input covers a whole monitor, if only invisibly: what
/// screen lockers do, whichever they are, and open menus do not. Meant for when another program
/// holds the keyboard. A game or a remote desktop that fills a screen and keeps the keyboard is no
/// different, on purpose: the server would not give us the keyboard, and the Escape that closes
/// menus would reach that program.
bool isTopmostWindowCovering(xcb_connection_t *connection);

} // namespace tovek
