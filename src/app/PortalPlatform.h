// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"
#include "platform/Platform.h"

namespace tovek {

struct EarlyPlatform;

/// Pictures from the desktop's portal, and the permission for them, in place of what the platform
/// has; its screens must be set. False, changing nothing, where there is no portal.
bool usePortalPictures(Platform &platform, EarlyPlatform &early);

/// Shortcuts from the desktop's portal, or from the settings of a GNOME whose portal has none. Null
/// where there are neither. Needs no application.
std::unique_ptr<HotKeys> makePortalHotKeys(EarlyPlatform &early, const KeyboardLayout &layout);

} // namespace tovek
