// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Spring.h"

namespace tovek {

/// A value that a spring, let go at rest, pulls to a target; it may swing over.
class SpringMotion
{
public:
    SpringMotion(double value, Spring spring);

    /// From where the value is.
    void start(double target);
    void advance(double seconds);
    double value() const;
    bool isAtRest() const { return m_elapsed >= m_duration; }

private:
    Spring m_spring;
    double m_from;
    double m_to;
    double m_duration;
    double m_elapsed;
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
