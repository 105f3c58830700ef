// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "capture/CapturedDisplay.h"

#include <optional>
#include <vector>

namespace tovek {

/// The frozen screens of a session. Main thread.
class CapturedDisplays
{
public:
    void add(const CapturedDisplay &captured) { m_captured.push_back(captured); }
    /// Absent when the screen is not captured.
    std::optional<CapturedDisplay> find(const Screen &screen) const;
    void remove(const Screen &screen);
    /// Begins to fetch the pixels of all of them.
    void fetchPixels() const;

    /// The pixels in a rectangle (native, y down, global) inside of one screen; null when none of
    /// them has it, or when they are not at hand.
    QImage pixelsIn(QRect native) const;

private:
    std::vector<CapturedDisplay> m_captured;
};

} // namespace tovek
