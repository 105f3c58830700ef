// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Spring.h"

#include <cmath>
#include <numbers>

namespace tovek {

namespace {

/// What is left of the way after so many seconds, without the oscillation: never less than the
/// distance from rest, and falling from its first instant on.
double envelope(double frequency, double damping, double seconds)
{
    if (damping < 1)
        return std::exp(-damping * frequency * seconds) / std::sqrt(1 - damping * damping);
    if (damping == 1)
        return std::exp(-frequency * seconds) * (1 + frequency * seconds);
    const double root = std::sqrt(damping * damping - 1);
    const double slow = frequency * (root - damping);
    const double fast = frequency * (-root - damping);
    return (slow * std::exp(fast * seconds) - fast * std::exp(slow * seconds)) / (slow - fast);
}

} // namespace

double Spring::progress(double seconds) const
{
    if (seconds <= 0)
        return 0;
    const double frequency = 2 * std::numbers::pi / response;
    if (dampingFraction >= 1)
        return 1 - envelope(frequency, dampingFraction, seconds);
    const double decay = dampingFraction * frequency;
    const double damped = frequency * std::sqrt(1 - dampingFraction * dampingFraction);
    return 1
        - std::exp(-decay * seconds)
        * (std::cos(damped * seconds) + decay / damped * std::sin(damped * seconds));
}

double Spring::settleTime(double tolerance) const
{
    const double frequency = 2 * std::numbers::pi / response;
    double before = 0;
    double after = response;
    while (envelope(frequency, dampingFraction, after) > tolerance)
        after *= 2;
    for (int i = 0; i < 50; ++i) {
        const double middle = (before + after) / 2;
        (envelope(frequency, dampingFraction, middle) > tolerance ? before : after) = middle;
    }
    return after;
}

} // namespace tovek
