// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QList>
#include <QPoint>
#include <QSize>
#include <QString>

#include <memory>

namespace tovek {

/// Presses real keys and moves the real mouse of a Wayland test desktop. To be kept for as long as
/// anybody looks at windows: without it the desktop has neither keyboard nor mouse. Every call
/// returns when the compositor has carried it out. Places are points of the whole desktop, y down.
class WaylandHand
{
public:
    /// `extent` is the size of the whole desktop in points.
    WaylandHand(const QString &socket, QSize extent);
    ~WaylandHand();
    WaylandHand(const WaylandHand &) = delete;
    WaylandHand &operator=(const WaylandHand &) = delete;

    /// False where the compositor takes no injected input. KWin takes it from programs whose
    /// desktop file says so.
    bool isWorking() const;

    void move(QPointF to);
    void press();
    void release();
    void click(QPointF at);
    /// Press, a smooth way of about 15 steps, release.
    void drag(QPointF from, QPointF to);
    void dragAndHold(QPointF from, QPointF to);

    /// Keys by the names of their key symbols, joined by "+": "Control_L+s", "Return". False when
    /// the keyboard has no such key.
    [[nodiscard]] bool tap(const QString &chord);
    [[nodiscard]] bool hold(const QString &chord);
    [[nodiscard]] bool letGo(const QString &chord);

private:
    struct Devices;
    bool send(const QString &chord, bool isDown);

    std::unique_ptr<Devices> m_devices;
};

} // namespace tovek
