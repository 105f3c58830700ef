// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/OverlayDrawing.h"
#include "platform/Screens.h"

#include <vector>

namespace tovek {

class CaptureSession;
class OverlayWindow;

/// What was drawn in a capture that made way for a screen locker: it comes back once, with the next
/// capture that can be drawn on. A selection alone is not kept, for a drag brings it back, and
/// whoever wants another one would have it in the way. In memory only. Main thread.
class KeptDrawings
{
public:
    /// Those of these overlays, each instead of an earlier one of its screen.
    void keep(const std::vector<OverlayWindow *> &windows);
    /// Puts each on the same screen as soon as its pixels are there, and forgets it. None without
    /// the keyboard: then the screen may still be locked, and must not show them.
    void giveBack(CaptureSession &session);

private:
    std::vector<std::pair<Screen, OverlayDrawing>> m_drawings;
};

} // namespace tovek
