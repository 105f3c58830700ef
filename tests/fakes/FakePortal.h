// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QMap>
#include <QMutex>
#include <QStringList>
#include <QThread>
#include <QVariantMap>

#include <memory>

namespace tovek {

/// How a desktop's portal behaves.
struct PortalScript
{
    bool offersScreenshots = true;
    bool offersShortcuts = true;
    bool takesNames = true; ///< as portals do since 1.20
    bool isSilent = false; ///< takes the request and never answers it
    std::chrono::milliseconds delay{0}; ///< before the answer
    uint code = 0;
    int answers = 1;
    QVariantMap results = {};
    QStringList refusedShortcuts = {}; ///< by their triggers
    QString permissionAfterwards = {}; ///< what the store then has for the program that asked
};

/// A desktop's portal and its store of permissions, on the session bus, on a thread of their own:
/// programs may wait for them. Any thread may call it.
class FakePortal : public QDBusVirtualObject
{
public:
    /// The name under which the store keeps what the portal is asked here.
    explicit FakePortal(const QString &address, const QString &appId);
    ~FakePortal() override;

    void set(const PortalScript &script);
    void setPermission(const QString &appId, const QString &permission);
    QString permission(const QString &appId) const;
    /// The methods that were called, in their order, with "Register" first where names are told.
    QStringList calls() const;
    /// Of the last request.
    QVariantMap lastOptions() const;
    /// The shortcuts of the sessions that are open: name, description and trigger of each.
    QStringList shortcuts() const;
    /// The key of such a shortcut goes down, or comes up.
    void press(const QString &name);
    void letGo(const QString &name);
    /// Goes and comes back, having forgotten who told it a name.
    void restart();

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override;

private:
    struct Session
    {
        QString client;
        QStringList shortcuts; ///< each by name, description and trigger
    };
    QVariantMap resultsOf(const QDBusMessage &message, const PortalScript &script);
    void answerRequest(const QDBusMessage &message, const PortalScript &script,
                       const QVariantMap &results);
    QDBusMessage version(const QDBusMessage &message, const PortalScript &script) const;
    void tellKey(const char *signal, const QString &name);
    QDBusMessage answerOfStore(const QDBusMessage &message);

    const QString m_appId;
    mutable QMutex m_mutex; ///< over all below
    PortalScript m_script;
    QMap<QString, QStringList> m_permissions;
    QStringList m_calls;
    QVariantMap m_lastOptions;
    QMap<QString, Session> m_sessions; ///< by path

    QThread m_thread;
    QString m_name;
};

} // namespace tovek
