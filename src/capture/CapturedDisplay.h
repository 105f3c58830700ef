// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/ScreenGrabber.h"

namespace tovek {

/// One frozen screen.
struct CapturedDisplay
{
    Screen screen;
    CaptureDisplay display; ///< the grabber's display that matched the screen
    std::shared_ptr<FrozenDisplay> screenshot; ///< never null; its points are the screen's frame
};

} // namespace tovek
