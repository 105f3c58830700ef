// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/NotificationCenter.h"

#include <QObject>

class QAbstractButton;
class QAction;
class QKeySequence;

namespace KeyboardShortcuts {

class ShortcutService;

/// Lets a button or an action of a window show and answer the shortcut of a name, except while a
/// recorder records: the keys then are the recorder's. For programs with such a view in a window
/// of their own; the menu of this program only labels its items (see MenuItems.h). Lives as a child
/// of the view; the service must outlive it.
class GlobalKeyboardShortcutViewModifier : public QObject
{
public:
    GlobalKeyboardShortcutViewModifier(QAbstractButton &view, Name name, ShortcutService &service);
    GlobalKeyboardShortcutViewModifier(QAction &view, Name name, ShortcutService &service);

private:
    GlobalKeyboardShortcutViewModifier(QObject &view, Name name, ShortcutService &service,
                                       std::function<void(const QKeySequence &)> apply);
    void update();

    bool m_isRecorderActive = false;
    Name m_name;
    ShortcutService &m_service;
    std::function<void(const QKeySequence &)> m_apply;
    NotificationCenter::Token m_nameToken;
    NotificationCenter::Token m_recorderToken;
    NotificationCenter::Token m_layoutToken;
};

} // namespace KeyboardShortcuts
