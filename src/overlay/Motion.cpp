// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/Motion.h"

#include <algorithm>
#include <cmath>

namespace tovek {

namespace {

/// Differences that no pixel shows.
constexpr double still = 0.0005;

} // namespace

SpringMotion::SpringMotion(double value, double response, double damping)
    : m_value(value)
    , m_target(value)
    , m_frequency(2 * M_PI / response)
    , m_damping(damping)
{
}

void SpringMotion::advance(double seconds)
{
    // The exact motion of a damped spring, so that it does not depend on the frame rate.
    const double offset = m_value - m_target;
    const double decay = m_damping * m_frequency;
    const double swing = m_frequency * std::sqrt(1 - m_damping * m_damping);
    const double sine = (m_velocity + decay * offset) / swing;
    const double fading = std::exp(-decay * seconds);
    const double c = std::cos(swing * seconds);
    const double s = std::sin(swing * seconds);
    m_value = m_target + fading * (offset * c + sine * s);
    m_velocity =
        fading * ((sine * swing - decay * offset) * c - (offset * swing + decay * sine) * s);
    if (std::abs(m_value - m_target) < still && std::abs(m_velocity) < still * m_frequency) {
        m_value = m_target;
        m_velocity = 0;
    }
}

bool SpringMotion::isAtRest() const
{
    return m_value == m_target && m_velocity == 0;
}

EaseInMotion::EaseInMotion(double value, double duration)
    : m_from(value)
    , m_to(value)
    , m_duration(duration)
    , m_elapsed(duration)
{
}

void EaseInMotion::start(double target)
{
    if (target == m_to)
        return;
    m_from = value();
    m_to = target;
    m_elapsed = 0;
}

void EaseInMotion::advance(double seconds)
{
    m_elapsed = std::min(m_duration, m_elapsed + seconds);
}

double EaseInMotion::value() const
{
    const double t = m_elapsed / m_duration;
    return m_from + (m_to - m_from) * t * t;
}

} // namespace tovek
