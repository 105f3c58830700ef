// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

namespace tovek {

/// A value that a spring pulls to a target; it may swing over. The response is the seconds of one
/// undamped swing, the damping a fraction of that which just prevents swinging (less than 1).
class SpringMotion
{
public:
    SpringMotion(double value, double response, double damping);

    /// From where the value is, and as fast as it moves, to the target.
    void pull(double target) { m_target = target; }
    void advance(double seconds);
    double value() const { return m_value; }
    bool isAtRest() const;

private:
    double m_value;
    double m_target;
    double m_velocity = 0;
    double m_frequency; ///< radians a second
    double m_damping;
};

/// A value that goes to a target in a fixed time, slowly at first.
class EaseInMotion
{
public:
    EaseInMotion(double value, double duration);

    void start(double target);
    void advance(double seconds);
    double value() const;
    bool isAtRest() const { return m_elapsed >= m_duration; }

private:
    double m_from;
    double m_to;
    double m_duration;
    double m_elapsed;
};

} // namespace tovek
