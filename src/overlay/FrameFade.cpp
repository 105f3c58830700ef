// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/FrameFade.h"

#include <cmath>

namespace tovek {

namespace {

constexpr double negligible = 0.01;

} // namespace

bool FrameFade::start(double target)
{
    if (std::abs(m_value - target) < negligible) {
        m_frame = frameCount; // a fade away from it that has only just begun
        return false;
    }
    m_target = target;
    m_step = (target - m_value) / frameCount;
    m_frame = 0;
    return true;
}

bool FrameFade::tick()
{
    if (!isRunning())
        return false;
    ++m_frame;
    m_value = m_frame == frameCount ? m_target : m_value + m_step;
    return isRunning();
}

std::chrono::milliseconds FrameFade::untilNextFrame() const
{
    const auto due = [](int frame) { return (frame * 1000 + 30) / 60; };
    return std::chrono::milliseconds(due(m_frame + 1) - due(m_frame));
}

} // namespace tovek
