// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Screens.h"
#include "platform/x11/capture/X11Monitors.h"

namespace tovek {

/// The monitors in native pixels, with the scales the toolkit uses for them. Frames keep their
/// distances in native pixels and divide their sizes, like the toolkit's, so that they never
/// overlap.
class X11Screens : public QObject, public Screens, private QAbstractNativeEventFilter
{
public:
    X11Screens(std::shared_ptr<X11Connection> connection, std::shared_ptr<X11Monitors> monitors);
    ~X11Screens() override;
    std::vector<Screen> all() const override;
    std::optional<Screen> main() const override;
    Point mouseLocation() const override;

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    std::vector<QRect> readPanels() const;

    std::shared_ptr<X11Connection> m_connection;
    std::shared_ptr<X11Monitors> m_monitors;
    mutable bool m_knowsPanels = false;
    mutable std::vector<QRect> m_panels;
};

/// What the panels leave of a monitor, all in native pixels. A panel counts only along the edge of
/// the monitor at which it lies; one that would leave nothing does not count.
QRect withoutPanels(QRect monitor, const std::vector<QRect> &panels);

/// The frame that belongs to a rectangle inside a monitor: points, y up.
/// `origin`: the first screen's bottom left corner as the toolkit places it, y down.
Rect frameOf(QRect native, QRect monitor, double scale, QPointF origin);

} // namespace tovek
