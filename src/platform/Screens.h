// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Geometry.h"

#include <QRect>
#include <QString>

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

class QScreen;

namespace tovek {

/// One monitor. A value: it stays valid as data after the monitor is gone.
struct Screen
{
    std::optional<quint32> displayId; ///< absent when the window system cannot identify it
    QString name; ///< as the user knows it
    Rect frame; ///< points, y up, global; origin at the first screen's bottom left corner
    Rect visibleFrame; ///< the frame without panels and docks
    QRect native; ///< native pixels, y down, global
    double scale = 1; ///< native pixels per point; need not be whole
    /// Pixels per unit in a cursor's picture: 1 where the window system shows it as it is.
    int cursorScale = 1;

    ViewSpace space() const { return {frame.size(), scale}; }
    bool operator==(const Screen &) const = default;
};

/// The monitors and the pointer. Main thread only.
class Screens
{
public:
    virtual ~Screens() = default;
    /// In the system's order, the first one being the origin of global coordinates. May be empty.
    virtual std::vector<Screen> all() const = 0;
    /// The primary monitor; absent when there is none.
    virtual std::optional<Screen> main() const = 0;
    /// The pointer in global points, y up.
    virtual Point mouseLocation() const = 0;

    /// A monitor came, went or changed.
    std::function<void()> onChanged;
};

/// The first screen that contains the point; absent when none does.
std::optional<Screen> screenContaining(const std::vector<Screen> &screens, Point point);

/// The main screen, or the first where none is; absent without any.
std::optional<Screen> mainOrFirst(const Screens &screens);

/// The toolkit's screen of this name; null when it knows none. Needs a QGuiApplication.
QScreen *toolkitScreen(const QString &name);

/// The time between two refreshes in whole milliseconds, rounded down. Rates that no screen has,
/// such as the 0 of some virtual ones, count as 60 a second.
std::chrono::milliseconds frameInterval(double refreshRate);
/// The same of a screen, which may be null.
std::chrono::milliseconds frameIntervalOf(const QScreen *screen);

} // namespace tovek
