// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "menubar/ItemMenu.h"

#include <QKeyEvent>
#include <QStyleOptionMenuItem>

#include <algorithm>

namespace tovek {

void ItemMenu::setVisible(bool isVisible)
{
    if (!isVisible && onLeaving)
        onLeaving();
    QMenu::setVisible(isVisible);
}

void ItemMenu::initStyleOption(QStyleOptionMenuItem *option, const QAction *action) const
{
    QMenu::initStyleOption(option, action);
    // The toolkit puts the keys behind a tab.
    const qsizetype tab = option->text.indexOf(QLatin1Char('\t'));
    if (tab >= 0 && describeKeys)
        option->text = option->text.left(tab + 1) + describeKeys(action->shortcut());
}

void ItemMenu::keyPressEvent(QKeyEvent *event)
{
    const QKeySequence keys(event->keyCombination());
    const QList<QAction *> items = actions();
    const auto meant = std::find_if(items.begin(), items.end(), [&](const QAction *item) {
        return !item->shortcut().isEmpty() && item->shortcut() == keys;
    });
    if (meant == items.end())
        return QMenu::keyPressEvent(event);
    (*meant)->trigger();
    close();
}

} // namespace tovek
