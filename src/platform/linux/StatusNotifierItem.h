// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Tray.h"

#include <QDBusConnection>

#include <memory>
#include <optional>

class QDBusServiceWatcher;

namespace tovek {

class DBusMenu;

/// The status item that the panel draws itself, from pictures that it is sent over the session bus.
/// It tells when the item was chosen and nothing of the pointer.
class StatusNotifierItem : public QObject, public Tray
{
public:
    /// Who draws the menu: we, where a program may put a menu anywhere, or the panel.
    enum class Menu { own, ofHost };
    explicit StatusNotifierItem(QDBusConnection bus = QDBusConnection::sessionBus(),
                                Menu menu = Menu::own);
    ~StatusNotifierItem() override;
    /// Another bus, or one that has died.
    void setBus(const QDBusConnection &bus);

    void setVisible(bool isVisible) override;
    void setPicture(const TrayPicture &picture) override;
    void setToolTip(const QString &text) override;
    bool hasHost() const override { return m_hasHost; }
    bool isLookingForHost() const override { return m_isLooking; }
    bool canDrag() const override { return false; }
    bool drawsMenu() const override { return m_menu != nullptr; }
    QObject *dragSource() override { return this; }
    /// Empty until the host has told where the item was chosen; then that point.
    QRect geometry() const override { return m_chosenAt; }

private:
    class Object;

    void watchHosts();
    void setHasHost(bool hasHost);
    void registerItem();
    void registerUnnamed(const QString &number);
    bool offerObjects(QDBusConnection &bus);
    static void withdrawObjects(QDBusConnection &bus);
    void closeOwnBus();
    void unregisterItem();
    QDBusConnection &itemBus() { return m_ownBus ? *m_ownBus : m_bus; }
    void chosen(int x, int y);

    QDBusConnection m_bus;
    std::optional<QDBusConnection> m_ownBus; ///< of the item, where it may have no name
    QString m_service; ///< ours, empty while the item is not registered
    bool m_hasHost = false;
    bool m_isLooking = false;
    bool m_isVisible = false;
    TrayPicture m_picture;
    QString m_toolTip;
    QRect m_chosenAt;
    std::unique_ptr<DBusMenu> m_menu; ///< present only where the host draws it
    std::unique_ptr<Object> m_object;
    std::unique_ptr<QDBusServiceWatcher> m_watcher;
};

} // namespace tovek
