// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/Png.h"

#include <QtEndian>

namespace tovek {

std::optional<QByteArray> pngChunk(const QByteArray &png, const QByteArray &type)
{
    constexpr qsizetype signature = 8;
    // Length, type, content, check sum.
    for (qsizetype at = signature; at + 12 <= png.size();) {
        const auto length = qsizetype(qFromBigEndian<quint32>(png.constData() + at));
        if (png.mid(at + 4, 4) == type)
            return png.mid(at + 8, length);
        at += length + 12;
    }
    return std::nullopt;
}

} // namespace tovek
