// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Clipboard.h"
#include "platform/Platform.h"

#include <QSize>

#include <vector>

namespace tovek {

struct EarlyPlatform;

/// False in a build without it.
bool canUseX11();
/// As the server's resources state them; 0 where they do not.
double x11ServersDotsPerInch();
/// Of the monitors in the server's pixels; none without a server. Needs no application.
std::vector<QSize> x11MonitorSizes();
/// Null where there is no X server.
std::unique_ptr<Clipboard> makeX11Clipboard();
/// False where there is no X server. Needs no application.
bool openX11Keyboard(EarlyPlatform &early);
/// False where the session is not one of X11. On a Wayland desktop's guest server, pictures and
/// keys come from the desktop.
bool addX11Desktop(Platform &platform, EarlyPlatform &early);
/// Only what takes pictures.
bool addX11Capture(Platform &platform, EarlyPlatform &early);

} // namespace tovek
