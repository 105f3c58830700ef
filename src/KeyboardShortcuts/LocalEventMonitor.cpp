// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/LocalEventMonitor.h"

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
    QCoreApplication::instance()->installEventFilter(this);
}

void LocalEventMonitor::stop()
{
    QCoreApplication::instance()->removeEventFilter(this);
}

bool LocalEventMonitor::eventFilter(QObject *watched, QEvent *event)
{
    return m_events.contains(event->type()) && watched->isWidgetType()
        && m_callback(*static_cast<QWidget *>(watched), *event);
}

} // namespace KeyboardShortcuts
