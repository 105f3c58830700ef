// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/overlay/PacedReading.h"

#include <QObject>
#include <QPointF>

#include <optional>

class QEvent;

namespace tovek {

/// Spares the widgets of a window the moves of a drag that nobody will see: of those that come
/// before the next frame can be shown, only the last is told. Main thread only.
class DragFollower : public QObject
{
public:
    /// `interval` lies between two times that the toolkit hears of moves.
    DragFollower(std::shared_ptr<WaylandConnection> toolkit, std::chrono::milliseconds interval);

    /// Off at first. Each move goes its usual way then.
    void setOn(bool isOn);
    /// To be shown each event of the window first. True where it must go no further.
    [[nodiscard]] bool take(const QEvent &event);
    /// Another frame could be shown from now on.
    void catchUpSoon();

    /// False while a frame more would not be seen.
    std::function<bool()> canShow;
    /// The mouse was moved with the left button held. As in the event, before a release and a key
    /// in any case.
    std::function<void(QPointF at)> onMoved;

private:
    void tell();

    const std::shared_ptr<WaylandConnection> m_toolkit;
    const std::chrono::milliseconds m_interval;
    bool m_isOn = false;
    bool m_isPosted = false;
    std::unique_ptr<PacedReading> m_reading; ///< while the button is held
    std::optional<QPointF> m_at; ///< not told yet
};

} // namespace tovek
