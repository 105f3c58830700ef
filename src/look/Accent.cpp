// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "look/Accent.h"

#include <algorithm>
#include <cmath>

namespace tovek {

namespace {

// What is asked of text, and of controls, that everybody shall be able to see.
constexpr double textContrast = 4.5;
constexpr double shapeContrast = 3;
constexpr int shades = 64;

/// Of one part of a colour, as light adds up.
double linear(float part)
{
    return part <= 0.04045f ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
        + 0.0722 * linear(color.blueF());
}

QColor shaded(const QColor &color, const QColor &towards, int shade)
{
    const float share = float(shade) / shades;
    const auto mix = [share](float from, float to) { return from + (to - from) * share; };
    return QColor::fromRgbF(mix(color.redF(), towards.redF()),
                            mix(color.greenF(), towards.greenF()),
                            mix(color.blueF(), towards.blueF()));
}

/// The first shade on the way that is far enough from a colour.
QColor movedAwayFrom(const QColor &from, const QColor &color, const QColor &towards,
                     double contrast)
{
    int shade = 0;
    while (shade < shades && contrastOf(shaded(color, towards, shade), from) < contrast)
        ++shade;
    return shaded(color, towards, shade);
}

} // namespace

double contrastOf(const QColor &one, const QColor &other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor readableAccent(QColor accent, const QColor &window)
{
    if (contrastOf(window, Qt::white) > contrastOf(window, Qt::black))
        accent = movedAwayFrom(window, accent, Qt::white, shapeContrast);
    return movedAwayFrom(accentText, accent, Qt::black, textContrast);
}

} // namespace tovek
