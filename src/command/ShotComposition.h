// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>
#include <QRect>

#include <vector>

namespace tovek {

/// The pixels of one screen and where they lie: native pixels, y down, global.
struct ScreenPixels
{
    QRect native;
    QImage pixels; ///< of that size, Format_RGB32
};

/// The part of the area that lies on the desktop: of the smallest rectangle around all screens.
QRect areaOnDesktop(const QRect &area, const std::vector<QRect> &screens);

/// The pixels of an area of the desktop, taken over unchanged; black where it shows no screen.
QImage composeArea(const QRect &area, const std::vector<ScreenPixels> &screens);

} // namespace tovek
