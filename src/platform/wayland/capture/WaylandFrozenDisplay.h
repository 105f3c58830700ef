// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Workers.h"
#include "platform/ScreenGrabber.h"
#include "platform/wayland/SharedPixels.h"

namespace tovek {

/// A frozen display in memory that the compositor can show as it is: upright, as Format_RGB32.
class WaylandFrozenDisplay : public FrozenDisplay
{
public:
    explicit WaylandFrozenDisplay(std::shared_ptr<SharedPixels> pixels)
        : m_pixels(std::move(pixels))
    {
    }
    /// A display whose pixels came another way; null where there is no memory for them.
    static std::shared_ptr<WaylandFrozenDisplay> fromImage(const QImage &image);
    QSize size() const override { return m_pixels->size(); }
    QFuture<QImage> pixels() override;
    const std::shared_ptr<SharedPixels> &shared() const { return m_pixels; }

private:
    std::shared_ptr<SharedPixels> m_pixels;
    std::optional<QFuture<QImage>> m_future;
    Workers m_thread{1};
};

} // namespace tovek
