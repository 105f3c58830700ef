// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Geometry.h"

namespace tovek {

QString toString(const Rect &rect)
{
    return QStringLiteral("(%1, %2, %3, %4)")
        .arg(rect.x)
        .arg(rect.y)
        .arg(rect.width)
        .arg(rect.height);
}

QRegion scaled(const QRegion &region, double factor)
{
    QRegion result;
    for (const QRect &rect : region) {
        const QRectF exact(rect.x() * factor, rect.y() * factor, rect.width() * factor,
                           rect.height() * factor);
        result += exact.toAlignedRect();
    }
    return result;
}

} // namespace tovek
