// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Platform.h"

namespace tovek {

/// The services of the session that the application runs in, chosen once. TOVEK_PLATFORM=x11 or
/// null forces a choice. Needs a QGuiApplication.
Platform makePlatform();

} // namespace tovek
