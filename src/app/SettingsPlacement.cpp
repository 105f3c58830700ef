// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/SettingsPlacement.h"

namespace tovek {

std::optional<Screen> targetScreen(const Screens &screens)
{
    if (auto screen = screenContaining(screens.all(), screens.mouseLocation()))
        return screen;
    return screens.main();
}

std::optional<Point> originOnScreen(const Rect &window, const Screen &target)
{
    if (target.frame.contains({window.midX(), window.midY()}))
        return std::nullopt;
    const Rect &visible = target.visibleFrame;
    return Point{visible.midX() - window.width * 0.5, visible.midY() - window.height * 0.5};
}

} // namespace tovek
