// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/ShortcutObserver.h"

#include "app/AppShortcuts.h"

#include <algorithm>

namespace tovek {

using KeyboardShortcuts::Name;
using KeyboardShortcuts::NotificationCenter;

ShortcutObserver::ShortcutObserver(NotificationCenter &notifications, QObject *parent)
    : QObject(parent)
{
    m_observers.push_back(notifications.observe(
        KeyboardShortcuts::shortcutByNameDidChange, [this](const QVariantMap &userInfo) {
            const auto name = userInfo.value(QStringLiteral("name")).value<Name>();
            const auto &ours = AppShortcuts::bindings();
            if (std::any_of(ours.begin(), ours.end(), [&](const AppShortcuts::Binding &binding) {
                    return binding.name == name;
                }))
                refresh();
        }));
    m_observers.push_back(notifications.observe(KeyboardShortcuts::keyboardLayoutDidChange,
                                                [this](const QVariantMap &) { refresh(); }));
}

void ShortcutObserver::refresh()
{
    Q_EMIT willChange();
    ++m_refreshTrigger;
    Q_EMIT changed();
}

} // namespace tovek
