// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/OverlayAnimations.h"

#include "platform/Clock.h"

namespace tovek {

OverlayAnimations::OverlayAnimations(Clock &clock)
    : m_clock(clock)
    , m_handles{Run{FrameFade(targetOpacityNormal)}, Run{FrameFade(targetOpacityNormal)},
                Run{FrameFade(targetOpacityNormal)}, Run{FrameFade(targetOpacityNormal)}}
{
}

void OverlayAnimations::startDimming()
{
    if (m_shouldShowDimming)
        return;
    m_shouldShowDimming = true;
    if (m_dimming.fade.start(targetDimming))
        schedule(m_dimming);
}

void OverlayAnimations::setHovered(std::optional<ResizeHandle> handle, bool isHovered)
{
    if (!handle || !isCorner(*handle))
        return;
    Run &run = m_handles[indexOf(*handle)];
    if (run.fade.start(isHovered ? targetOpacityHovered : targetOpacityNormal))
        schedule(run);
}

size_t OverlayAnimations::indexOf(ResizeHandle corner)
{
    switch (corner) {
    case ResizeHandle::topLeft:
        return 0;
    case ResizeHandle::topRight:
        return 1;
    case ResizeHandle::bottomLeft:
        return 2;
    default:
        return 3;
    }
}

void OverlayAnimations::schedule(Run &run)
{
    const quint64 serial = ++run.serial;
    m_clock.after(run.fade.untilNextFrame(), this, [this, &run, serial] {
        if (serial != run.serial)
            return;
        if (run.fade.tick())
            schedule(run);
        if (onFrame)
            onFrame();
    });
}

std::array<double, 4> OverlayAnimations::handleOpacities() const
{
    return {handleOpacity(ResizeHandle::bottomLeft), handleOpacity(ResizeHandle::bottomRight),
            handleOpacity(ResizeHandle::topLeft), handleOpacity(ResizeHandle::topRight)};
}

} // namespace tovek
