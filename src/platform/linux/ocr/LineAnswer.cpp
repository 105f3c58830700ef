// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/ocr/LineAnswer.h"

#include <algorithm>
#include <cmath>

namespace tovek {

std::optional<std::vector<EngineSymbol>>
lineAnswer(const std::vector<LineProtocol::Symbol> &symbols, int stripWidth)
{
    std::vector<EngineSymbol> result;
    const auto inside = [&](float x) { return std::clamp(double(x), 0.0, double(stripWidth)); };
    for (const LineProtocol::Symbol &symbol : symbols) {
        // A number that is none would bring every comparison of places out of order.
        if (!std::isfinite(symbol.left) || !std::isfinite(symbol.right)
            || !std::isfinite(symbol.confidence))
            return std::nullopt;
        const auto length = std::min<qsizetype>(symbol.length, sizeof(symbol.text));
        const QString text = QString::fromUtf8(symbol.text, length).simplified().remove(' ');
        if (text.isEmpty())
            continue;
        const double left = inside(symbol.left);
        result.push_back({text, left, std::max(left, inside(symbol.right)),
                          std::clamp(double(symbol.confidence), 0.0, 100.0),
                          symbol.startsWord != 0});
    }
    return result;
}

} // namespace tovek
