// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QEvent>
#include <QList>
#include <QObject>

#include <functional>

namespace KeyboardShortcuts {

/// Sees events of this program's own windows before the widget that they are meant for, once for
/// each widget that they reach. Main thread only; ends with the object.
class LocalEventMonitor : public QObject
{
public:
    /// True swallows the event: the widget does not see it.
    using Callback = std::function<bool(QWidget &widget, QEvent &event)>;

    LocalEventMonitor(QList<QEvent::Type> events, Callback callback);
    void start();
    void stop();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QList<QEvent::Type> m_events;
    Callback m_callback;
};

} // namespace KeyboardShortcuts
