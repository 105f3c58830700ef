// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/MenuItems.h"

#include "KeyboardShortcuts/ShortcutDescription.h"
#include "KeyboardShortcuts/ShortcutService.h"

#include <QAction>
#include <QMenu>

namespace KeyboardShortcuts {

namespace {

const char labelProperty[] = "KeyboardShortcuts_isLabel";

/// Lives as a child of the item that it keeps in step.
class ShortcutBinding : public QObject
{
public:
    ShortcutBinding(QAction &item, const Name &name, ShortcutService &service)
        : QObject(&item)
        , m_item(item)
        , m_name(name)
        , m_service(service)
    {
        NotificationCenter &notifications = service.notifications();
        m_nameToken =
            notifications.observe(shortcutByNameDidChange, [this](const QVariantMap &userInfo) {
                if (userInfo.value(QStringLiteral("name")).value<Name>() == m_name)
                    apply();
            });
        m_layoutToken = notifications.observe(keyboardLayoutDidChange,
                                              [this](const QVariantMap &) { apply(); });
        apply();
    }

private:
    void apply() { setShortcut(m_item, m_service.shortcut(m_name), m_service.layout()); }

    QAction &m_item;
    Name m_name;
    ShortcutService &m_service;
    NotificationCenter::Token m_nameToken;
    NotificationCenter::Token m_layoutToken;
};

} // namespace

void setShortcut(QAction &item, const std::optional<Shortcut> &shortcut,
                 const tovek::KeyboardLayout &layout)
{
    // In this context a key chooses the item only while its menu bar has the keyboard; a menu that
    // hangs on no menu bar never answers.
    item.setShortcutContext(Qt::WidgetShortcut);
    item.setShortcutVisibleInContextMenu(true);
    item.setAutoRepeat(false);
    item.setProperty(labelProperty, true);
    item.setShortcut(shortcut ? keySequence(*shortcut, layout) : QKeySequence());
}

void setShortcut(QAction &item, const Name &name, ShortcutService &service)
{
    const QObjectList children = item.children();
    for (QObject *child : children) {
        if (dynamic_cast<ShortcutBinding *>(child))
            delete child; // owned by the item, which this binding replaces it on
    }
    new ShortcutBinding(item, name, service);
}

QString menuTitle(const QAction &item)
{
    // A single ampersand marks the key that chooses the item; two stand for one.
    QString title = item.text();
    title.replace(QStringLiteral("&&"), QStringLiteral("\x01"));
    title.remove(QLatin1Char('&'));
    return title.replace(QLatin1Char('\x01'), QLatin1Char('&'));
}

QAction *menuItem(const Shortcut &shortcut, const QList<QAction *> &mainMenu,
                  const tovek::KeyboardLayout &layout)
{
    const auto wanted = menuKey(shortcut, layout);
    if (!wanted)
        return nullptr;
    for (QAction *item : mainMenu) {
        const auto key = menuKey(item->shortcut());
        if (key && !item->property(labelProperty).toBool() && isChosenBy(*key, *wanted))
            return item;
        if (const auto *submenu = item->menu<QMenu *>()) {
            if (QAction *found = menuItem(shortcut, submenu->actions(), layout))
                return found;
        }
    }
    return nullptr;
}

} // namespace KeyboardShortcuts
