// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/TextRecognizer.h"

namespace tovek {

std::optional<QRectF> TextObservation::boxOf(qsizetype from, qsizetype length) const
{
    QRectF box;
    for (const RecognizedRange &range : ranges) {
        if (range.from < from + length && range.from + range.length > from)
            box |= range.box;
    }
    return box.isEmpty() ? std::nullopt : std::optional(box);
}

} // namespace tovek
