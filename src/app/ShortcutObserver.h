// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "KeyboardShortcuts/NotificationCenter.h"

#include <QObject>

#include <vector>

namespace tovek {

/// Lets everything that shows one of the program's shortcuts show it anew after a change.
class ShortcutObserver : public QObject
{
    Q_OBJECT

public:
    explicit ShortcutObserver(KeyboardShortcuts::NotificationCenter &notifications,
                              QObject *parent = nullptr);

    /// The value means nothing; that it becomes another one does.
    qint64 refreshTrigger() const { return m_refreshTrigger; }

Q_SIGNALS:
    /// Before each change of `refreshTrigger`.
    void willChange();
    void changed();

private:
    void refresh();

    qint64 m_refreshTrigger = 0;
    std::vector<KeyboardShortcuts::NotificationCenter::Token> m_observers;
};

} // namespace tovek
