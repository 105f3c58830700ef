// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/Motion.h"

#include <algorithm>

namespace tovek {

SpringMotion::SpringMotion(double value, Spring spring)
    : m_spring(spring)
    , m_from(value)
    , m_to(value)
    , m_duration(spring.settleTime())
    , m_elapsed(m_duration)
{
}

void SpringMotion::start(double target)
{
    if (target == m_to)
        return;
    m_from = value();
    m_to = target;
    m_elapsed = 0;
}

void SpringMotion::advance(double seconds)
{
    m_elapsed = std::min(m_duration, m_elapsed + seconds);
}

double SpringMotion::value() const
{
    return isAtRest() ? m_to : m_from + (m_to - m_from) * m_spring.progress(m_elapsed);
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
