// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"
#include "platform/KeyboardLayout.h"
#include "platform/Platform.h"

#include <memory>

namespace tovek {

struct EarlyPlatform;
class WaylandConnection;

/// Null where the compositor does not offer what an overlay takes, or windows of X11 serve better.
/// Needs no application.
std::shared_ptr<WaylandConnection> openWayland(EarlyPlatform &early);
/// The keys as a Wayland desktop gives them, whatever the toolkit runs on. Needs no application.
std::unique_ptr<HotKeys> makeWaylandHotKeys(EarlyPlatform &early, const KeyboardLayout &layout);
/// False where the toolkit is not going to run on Wayland.
bool openWaylandKeyboard(EarlyPlatform &early);
/// False where the toolkit does not run on Wayland, or the compositor lacks what a capture takes.
bool addWaylandDesktop(Platform &platform, EarlyPlatform &early);
/// Only what takes pictures.
bool addWaylandCapture(Platform &platform, EarlyPlatform &early);

} // namespace tovek
