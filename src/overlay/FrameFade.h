// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>

namespace tovek {

/// A value that moves to a target in twelve equal steps of a sixtieth of a second. The last step
/// writes the target exactly, so that rounding never leaves a value just short of it.
class FrameFade
{
public:
    static constexpr int frameCount = 12;

    explicit FrameFade(double value) : m_value(value), m_target(value) { }

    double value() const { return m_value; }
    bool isRunning() const { return m_frame < frameCount; }
    /// Restarts from the current value. False when the value is as good as there already.
    bool start(double target);
    /// One frame on; true while more frames follow.
    bool tick();
    /// How long the next frame is away; frames fall on whole milliseconds nearest to n / 60 s.
    std::chrono::milliseconds untilNextFrame() const;

private:
    double m_value;
    double m_target;
    double m_step = 0;
    int m_frame = frameCount;
};

} // namespace tovek
