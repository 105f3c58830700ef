// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/WindowAccess.h"

#include <QAccessibleWidget>
#include <QWidget>

namespace tovek {

namespace {

/// What kind of window a widget is may change after it was seen first.
class Access : public QAccessibleWidget
{
public:
    using QAccessibleWidget::QAccessibleWidget;

    QAccessible::Role role() const override
    {
        switch (widget()->isWindow() ? widget()->windowType() : Qt::Widget) {
        case Qt::Window:
            return QAccessible::Window;
        case Qt::Dialog:
            return QAccessible::Dialog;
        default:
            return QAccessibleWidget::role();
        }
    }
};

QAccessibleInterface *accessTo(const QString &className, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    // The toolkit asks for each class that the object is, the most special one first.
    const bool isPlain = widget && widget->isWindow() && className == QLatin1String("QWidget");
    return isPlain ? new Access(widget) : nullptr; // the toolkit's cache owns it
}

} // namespace

void installWindowAccess()
{
    [[maybe_unused]] static const bool isInstalled = [] {
        QAccessible::installFactory(&accessTo);
        return true;
    }();
}

} // namespace tovek
