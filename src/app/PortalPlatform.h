// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"
#include "platform/LoginItem.h"
#include "platform/Platform.h"
#include "platform/portal/PortalScreenGrabber.h"

namespace tovek {

struct EarlyPlatform;

/// Whether the session has a portal at all. Needs no application.
bool hasPortal(EarlyPlatform &early);
/// Pictures from the desktop's portal, and the permission for them, in place of what the platform
/// has. False, changing nothing, where there is no portal.
bool usePortalPictures(Platform &platform, EarlyPlatform &early,
                       PortalScreenGrabber::Desktop desktop);

/// Starting at login as the portal lets a program in a sandbox have it; null outside of one.
std::unique_ptr<LoginItem> makePortalLoginItem(EarlyPlatform &early);

/// Shortcuts from the desktop's portal, or from the settings of a GNOME whose portal has none. Null
/// where there are neither. Needs no application.
std::unique_ptr<HotKeys> makePortalHotKeys(EarlyPlatform &early, const KeyboardLayout &layout);

} // namespace tovek
