// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/Screens.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace tovek {

namespace {

/// Beyond this, a screen cannot be looked at, or the rate is no rate.
constexpr double leastRate = 24, mostRate = 250, usualRate = 60;

} // namespace

std::optional<Screen> screenContaining(const std::vector<Screen> &screens, Point point)
{
    for (const Screen &screen : screens) {
        if (screen.frame.contains(point))
            return screen;
    }
    return std::nullopt;
}

std::optional<Screen> mainOrFirst(const Screens &screens)
{
    if (auto screen = screens.main())
        return screen;
    const std::vector<Screen> all = screens.all();
    return all.empty() ? std::nullopt : std::optional(all.front());
}

QScreen *toolkitScreen(const QString &name)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    const auto same = std::find_if(screens.begin(), screens.end(),
                                   [&](const QScreen *s) { return s->name() == name; });
    return same == screens.end() ? nullptr : *same;
}

std::chrono::milliseconds frameInterval(double refreshRate)
{
    const bool isRate = refreshRate >= leastRate && refreshRate <= mostRate;
    return std::chrono::milliseconds(int(1000 / (isRate ? refreshRate : usualRate)));
}

std::chrono::milliseconds frameIntervalOf(const QScreen *screen)
{
    return frameInterval(screen ? screen->refreshRate() : 0);
}

} // namespace tovek
