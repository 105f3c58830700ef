// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QObject>

#include <memory>
#include <optional>

namespace tovek {

namespace Portal {

const inline QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const inline QString path = QStringLiteral("/org/freedesktop/portal/desktop");

/// A call of the portal's main object, with the last part of the interface's name.
QDBusMessage call(const QString &interface, const QString &method);
/// Reads a property, such as an interface's version.
QDBusMessage get(const QString &interface, const QString &property);

} // namespace Portal

/// A connection to the session bus that the desktop's portal knows under this program's name. One
/// of our own: the name has to be told before anything else is asked on it, and on the toolkit's
/// the toolkit asks first. Main thread only.
class PortalBus : public QObject
{
    Q_OBJECT

public:
    /// `bus` tells where the session bus is, and whether there is one.
    explicit PortalBus(const QDBusConnection &bus);
    ~PortalBus() override;

    /// Whether a portal runs, or the bus can start one.
    bool isOffered() const;
    const QDBusConnection &connection() const { return m_connection; }
    /// The name under which the portal keeps what is permitted to this program; may be empty. Waits
    /// for a portal that just starts, for a second at most.
    QString appId() const;
    /// Different for each request and session.
    QString nextToken();

    /// Another session bus from now on, or none.
    void setBus(const QDBusConnection &bus);

Q_SIGNALS:
    /// The portal went, with everything that was asked of it.
    void portalLost();
    /// Another one runs, which knows nothing yet.
    void portalStarted();

private:
    void open(const QDBusConnection &bus);
    void tellName();
    void ownerChanged(const QString &before, const QString &now);

    QString m_connectionName;
    QDBusConnection m_connection;
    std::unique_ptr<QDBusServiceWatcher> m_watcher;
    std::optional<QDBusPendingCall> m_naming;
    bool m_isLost = false;
    int m_tokens = 0;
};

} // namespace tovek
