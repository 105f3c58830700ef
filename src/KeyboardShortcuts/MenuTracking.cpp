// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/MenuTracking.h"

#include "foundation/MainThread.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>

namespace KeyboardShortcuts {

MenuTracking::MenuTracking()
{
    Q_ASSERT(tovek::isMainThread());
    QCoreApplication::instance()->installEventFilter(this);
}

bool MenuTracking::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    if ((type == QEvent::Show || type == QEvent::Hide) && watched->isWidgetType()
        && static_cast<QWidget *>(watched)->windowType() == Qt::Popup)
        setOpen(watched, type == QEvent::Show);
    return false;
}

void MenuTracking::setOpen(QObject *popup, bool isOpen)
{
    const bool wasOpen = this->isOpen();
    if (isOpen) {
        m_open.insert(popup);
        // A popup that dies while it is open sends no Hide event through the filter.
        connect(popup, &QObject::destroyed, this, [this, popup] { setOpen(popup, false); });
    } else {
        m_open.remove(popup);
        popup->disconnect(this);
    }
    if (wasOpen != this->isOpen() && onChanged)
        onChanged(this->isOpen());
}

} // namespace KeyboardShortcuts
