// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/LocalEventMonitor.h"

#include "foundation/MainThread.h"

#include <QCoreApplication>
#include <QWidget>

namespace KeyboardShortcuts {

LocalEventMonitor::LocalEventMonitor(QList<QEvent::Type> events, Callback callback)
    : m_events(std::move(events))
    , m_callback(std::move(callback))
{
}

void LocalEventMonitor::start()
{
    Q_ASSERT(tovek::isMainThread());
    QCoreApplication::instance()->installEventFilter(this);
}

void LocalEventMonitor::stop()
{
    Q_ASSERT(tovek::isMainThread());
    QCoreApplication::instance()->removeEventFilter(this);
}

bool LocalEventMonitor::eventFilter(QObject *watched, QEvent *event)
{
    return m_events.contains(event->type()) && watched->isWidgetType()
        && m_callback(*static_cast<QWidget *>(watched), *event);
}

} // namespace KeyboardShortcuts
