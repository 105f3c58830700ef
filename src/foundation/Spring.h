// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

namespace tovek {

/// The motion of a damped spring that is let go at rest, as a closed form over time.
///
/// A unit mass hangs at distance 1 from its place of rest: x'' + 2 z w x' + w^2 x = 0 with x(0) =
/// 1, x'(0) = 0, where w = 2 pi / response is the natural frequency and z the damping fraction.
/// With the roots of s^2 + 2 z w s + w^2 = 0 that initial value problem has the textbook solutions
///   z < 1: x = e^(-z w t) (cos(d t) + (z w / d) sin(d t)), d = w sqrt(1 - z^2)
///   z = 1: x = e^(-w t) (1 + w t)
///   z > 1: x = (b e^(a t) - a e^(b t)) / (b - a), a, b = w (-z +- sqrt(z^2 - 1))
/// Being closed, it is exact at any time, however few frames are painted.
struct Spring
{
    double response = 0.25; ///< seconds; the period of the same spring without damping
    double dampingFraction = 0.6; ///< below 1 it overshoots

    /// How much of the way is done after so many seconds: 0 at first, 1 at rest, above 1 while it
    /// overshoots.
    double progress(double seconds) const;
    /// The seconds after which the progress stays within the tolerance of 1.
    double settleTime(double tolerance = 0.001) const;

    bool operator==(const Spring &) const = default;
};

} // namespace tovek
