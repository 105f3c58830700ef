// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "KeyboardShortcuts/Name.h"

#include <QList>

class QAction;

namespace tovek {
class KeyboardLayout;
}

namespace KeyboardShortcuts {

class ShortcutService;

/// Labels the item with the shortcut, or with none. The item does not answer to the keys itself:
/// the hot key does, also while our own windows are active, and the action must not run twice.
void setShortcut(QAction &item, const std::optional<Shortcut> &shortcut,
                 const tovek::KeyboardLayout &layout);

/// Labels the item with the shortcut of the name, and again whenever that changes or the layout
/// types other characters. An item follows one name: the last it was given. The service must
/// outlive the item.
void setShortcut(QAction &item, const Name &name, ShortcutService &service);

/// The text of the item as it reads in the menu.
QString menuTitle(const QAction &item);

/// The first item, submenus included, that answers to the shortcut; null when there is none. The
/// shortcut is taken as it acts inside our windows, where Control and Super are both the command
/// key. Items that only carry a shortcut as their label answer to nothing.
QAction *menuItem(const Shortcut &shortcut, const QList<QAction *> &mainMenu,
                  const tovek::KeyboardLayout &layout);

} // namespace KeyboardShortcuts
