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

} // namespace tovek
