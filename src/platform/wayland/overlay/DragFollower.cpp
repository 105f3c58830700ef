// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/overlay/DragFollower.h"

#include "foundation/MainThread.h"

#include <QMouseEvent>

#include <utility>

namespace tovek {

DragFollower::DragFollower(std::shared_ptr<WaylandConnection> toolkit,
                           std::chrono::milliseconds interval)
    : m_toolkit(std::move(toolkit))
    , m_interval(interval)
{
}

void DragFollower::setOn(bool isOn)
{
    Q_ASSERT(isMainThread());
    m_isOn = isOn;
    if (isOn)
        return;
    m_reading.reset();
    m_at.reset();
}

bool DragFollower::take(const QEvent &event)
{
    const auto isOfLeftButton = [&event] {
        return static_cast<const QMouseEvent &>(event).button() == Qt::LeftButton;
    };
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        if (m_isOn && isOfLeftButton())
            m_reading = std::make_unique<PacedReading>(m_toolkit, m_interval);
        return false;
    case QEvent::MouseMove:
        // A compositor that takes the mouse away keeps the release to itself.
        if (!(static_cast<const QMouseEvent &>(event).buttons() & Qt::LeftButton))
            m_reading.reset();
        if (!m_reading)
            return false;
        m_at = static_cast<const QMouseEvent &>(event).scenePosition();
        // Others may have been read with this one.
        catchUpSoon();
        return true;
    case QEvent::MouseButtonRelease:
        if (!m_reading || !isOfLeftButton())
            return false;
        m_reading.reset();
        m_at = static_cast<const QMouseEvent &>(event).scenePosition();
        tell();
        return false;
    case QEvent::KeyPress:
        tell(); // a key acts on what the mouse made before it
        return false;
    default:
        return false;
    }
}

void DragFollower::catchUpSoon()
{
    if (!m_at || std::exchange(m_isPosted, true))
        return;
    const auto catchUp = [this] {
        m_isPosted = false;
        if (canShow && canShow())
            tell();
    };
    QMetaObject::invokeMethod(this, catchUp, Qt::QueuedConnection);
}

void DragFollower::tell()
{
    const auto at = std::exchange(m_at, std::nullopt);
    if (at && onMoved)
        onMoved(*at);
}

} // namespace tovek
