// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/capture/X11Monitors.h"

namespace tovek {

/// Whether the server is a guest on a Wayland desktop: its root window shows none of that desktop,
/// and windows laid over it hide what no picture can be had of.
bool isXWayland(const X11Connection &connection, const X11Monitors &monitors);

/// The sizes of the monitors of the server that the environment names, in its pixels; none without
/// a server. Needs no application.
std::vector<QSize> sizesOfXMonitors();

} // namespace tovek
