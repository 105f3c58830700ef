// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "text/TextLines.h"

#include <cmath>

namespace tovek {

namespace {

constexpr double sameLine = 0.02;
/// Two doubles whose difference is exactly the limit may differ by a rounding error more.
constexpr double rounding = 1e-12;

} // namespace

QString joinedLines(const std::vector<TextRegion> &regions)
{
    QString text;
    for (size_t i = 0; i < regions.size(); ++i) {
        if (i > 0) {
            const double step =
                std::abs(regions[i].boundingBox.midY() - regions[i - 1].boundingBox.midY());
            text += step <= sameLine + rounding ? QLatin1Char(' ') : QLatin1Char('\n');
        }
        text += regions[i].text;
    }
    return text;
}

} // namespace tovek
