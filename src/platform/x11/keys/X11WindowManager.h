// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <xcb/xcb.h>

namespace tovek {

/// As it calls itself, a few round trips away; empty where there is none, or it has no name.
QString x11WindowManagerName(xcb_connection_t *connection, xcb_window_t root);

} // namespace tovek
