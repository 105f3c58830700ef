// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/Pixels.h"

#include <algorithm>

namespace tovek {

int differentPixels(const QImage &one, const QImage &other)
{
    if (one.size() != other.size())
        return int(std::max(one.width() * one.height(), other.width() * other.height()));
    const QImage left = one.convertToFormat(QImage::Format_RGB32);
    const QImage right = other.convertToFormat(QImage::Format_RGB32);
    int count = 0;
    for (int y = 0; y < left.height(); ++y) {
        const auto *a = reinterpret_cast<const QRgb *>(left.constScanLine(y));
        const auto *b = reinterpret_cast<const QRgb *>(right.constScanLine(y));
        for (int x = 0; x < left.width(); ++x)
            count += (a[x] ^ b[x]) << 8 != 0;
    }
    return count;
}

} // namespace tovek
