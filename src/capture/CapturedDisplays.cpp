// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/CapturedDisplays.h"

#include "foundation/MainThread.h"

#include <algorithm>

namespace tovek {

std::optional<CapturedDisplay> CapturedDisplays::find(const Screen &screen) const
{
    const auto found =
        std::find_if(m_captured.begin(), m_captured.end(),
                     [&](const CapturedDisplay &captured) { return captured.screen == screen; });
    return found == m_captured.end() ? std::nullopt : std::optional(*found);
}

void CapturedDisplays::remove(const Screen &screen)
{
    Q_ASSERT(isMainThread());
    std::erase_if(m_captured,
                  [&](const CapturedDisplay &captured) { return captured.screen == screen; });
}

void CapturedDisplays::fetchPixels() const
{
    for (const CapturedDisplay &captured : m_captured)
        captured.screenshot->pixels();
}

QImage CapturedDisplays::pixelsIn(QRect native) const
{
    for (const CapturedDisplay &captured : m_captured) {
        const QRect screen = captured.screen.native;
        const QFuture<QImage> pixels = captured.screenshot->pixels();
        if (screen.contains(native) && pixels.isFinished() && pixels.resultCount() > 0)
            return pixels.result().copy(native.translated(-screen.topLeft()));
    }
    return {};
}

} // namespace tovek
