// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

namespace tovek {

/// The picture with left and right changed over, or top and bottom. Qt has it under another name
/// from 6.9 on, and deprecates the old one later.
inline QImage mirroredImage(const QImage &image, Qt::Orientation over)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 9, 0)
    return image.flipped(over);
#else
    return image.mirrored(over == Qt::Horizontal, over == Qt::Vertical);
#endif
}

} // namespace tovek
