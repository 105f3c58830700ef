// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Geometry.h"

#include <QPoint>
#include <QRect>
#include <QString>

class QDateTime;

namespace tovek {

inline constexpr double thumbnailHeight = 18; ///< points, in the status item
inline constexpr double dragImageBox = 200; ///< points

/// An image of this size as a thumbnail of the status item. An image without a height is empty.
Size thumbnailSize(Size image);

/// An image scaled to fit the box of the drag image, keeping its proportions; small ones grow.
Size dragImageSize(Size image);

/// True when the pointer went so far from where it was pressed that a drag is meant.
bool isDrag(QPointF pressed, QPointF now);

/// "Screenshot 2025-03-07-140509.png".
QString dragFileName(const QDateTime &localTime);

/// Where a menu opens: left-aligned, five points below the item, or above it where the screen has
/// no room below; always inside the screen as far as it fits. Global logical pixels, y down.
QPoint menuOrigin(const QRect &item, QSize menu, const QRect &screen);

} // namespace tovek
