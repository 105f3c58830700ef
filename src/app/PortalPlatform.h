// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Platform.h"

namespace tovek {

struct EarlyPlatform;

/// Pictures from the desktop's portal, and the permission for them, in place of what the platform
/// has; its screens must be set. False, changing nothing, where there is no portal.
bool usePortalPictures(Platform &platform, const EarlyPlatform &early);

/// Whether the desktop is GNOME, or made of its shell.
bool isGnome();

} // namespace tovek
