// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Screens.h"

namespace tovek {

/// Screens, and a pointer, where the test puts them.
class FakeScreens : public Screens
{
public:
    std::vector<Screen> all() const override { return screens; }
    std::optional<Screen> main() const override
    {
        return screens.empty() ? std::nullopt : std::optional(screens.front());
    }
    Point mouseLocation() const override { return mouse; }

    /// The monitors are these from now on, their native pixels where their frames put them.
    void change(std::vector<Screen> now)
    {
        for (Screen &screen : now)
            screen.native.moveTop(qRound(now.front().frame.maxY() - screen.frame.maxY()));
        screens = std::move(now);
        if (onChanged)
            onChanged();
    }

    /// A screen of this place and size in points whose native pixels follow from the scale.
    static Screen screen(quint32 id, Rect frame, double scale = 1)
    {
        return {id,
                QStringLiteral("Screen %1").arg(id),
                frame,
                frame,
                QRect(int(frame.x), 0, qRound(frame.width * scale), qRound(frame.height * scale)),
                scale};
    }

    std::vector<Screen> screens;
    Point mouse;
};

} // namespace tovek
