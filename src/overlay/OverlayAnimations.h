// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/FrameFade.h"
#include "overlay/SelectionGeometry.h"

#include <QObject>

#include <array>
#include <functional>

namespace tovek {

class Clock;

/// What moves by itself on an overlay: the veil that fades in with the first press, and the
/// opacity of each corner handle, which follows the pointer. No timer runs while nothing moves.
class OverlayAnimations : public QObject
{
public:
    static constexpr double targetOpacityHovered = 1.0;
    static constexpr double targetOpacityNormal = 0.2;
    static constexpr double targetDimming = 0.5;

    explicit OverlayAnimations(Clock &clock);

    double dimmingOpacity() const { return m_dimming.fade.value(); }
    bool shouldShowDimming() const { return m_shouldShowDimming; }
    double handleOpacity(ResizeHandle corner) const { return fadeOf(corner).value(); }
    /// Bottom left, bottom right, top left, top right.
    std::array<double, 4> handleOpacities() const;

    /// Only the first call does anything; the veil never fades out again.
    void startDimming();
    /// Only corners animate.
    void setHovered(std::optional<ResizeHandle> handle, bool isHovered);

    /// Some value changed.
    std::function<void()> onFrame;

private:
    static size_t indexOf(ResizeHandle corner);
    const FrameFade &fadeOf(ResizeHandle corner) const { return m_handles[indexOf(corner)].fade; }

    struct Run
    {
        FrameFade fade;
        quint64 serial = 0; ///< a restart outdates the frames that are still scheduled
    };
    void schedule(Run &run);

    Clock &m_clock;
    Run m_dimming{FrameFade(0)};
    std::array<Run, 4> m_handles;
    bool m_shouldShowDimming = false;
};

} // namespace tovek
