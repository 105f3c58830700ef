// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Notifications.h"

#include <QDBusConnection>
#include <QObject>

#include <map>
#include <memory>

class QDBusPendingCallWatcher;
class QDBusServiceWatcher;

namespace tovek {

/// Notifications over org.freedesktop.Notifications. Listens to the server only while one of ours
/// may still be answered, so that other programs' notifications do not wake the process.
class DBusNotifications : public QObject, public Notifications
{
    Q_OBJECT

public:
    explicit DBusNotifications(QDBusConnection bus = QDBusConnection::sessionBus());
    ~DBusNotifications() override;
    /// Another bus, or one that has died: nothing is known there of what was shown.
    void setBus(const QDBusConnection &bus);

    /// This desktop asks nobody; answers at once, from the main loop.
    void requestAuthorization(Completion done) override;
    void setCategories(const std::vector<NotificationCategory> &categories) override;
    void add(const NotificationRequest &request, Completion done) override;

    /// How long a server may take to answer.
    int timeoutMs = 5000;

private Q_SLOTS:
    /// Comes before the action that it is for.
    void activationToken(uint id, const QString &token);
    void actionInvoked(uint id, const QString &action);
    void notificationClosed(uint id, uint reason);

private:
    using UserInfo = QMap<QString, QString>;

    void askCapabilities(std::function<void()> then);
    void notify(const NotificationRequest &request, const Completion &done);
    void remember(uint id, const UserInfo &userInfo);
    void forget(uint id);
    void setListening(bool isListening);

    QDBusConnection m_bus;
    std::vector<NotificationCategory> m_categories;
    std::optional<QStringList> m_capabilities; ///< absent until the present server was asked
    uint m_passing = 0; ///< the last one that was to leave nothing behind
    std::map<uint, UserInfo> m_open; ///< by the server's number
    std::pair<uint, QString> m_token; ///< the last one, and the notification's number
    bool m_isListening = false;
    std::unique_ptr<QDBusServiceWatcher> m_watcher;
};

} // namespace tovek
