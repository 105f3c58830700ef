// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PortalBus.h"

#include "platform/linux/BusProbe.h"
#include "platform/portal/HostAppId.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDeadlineTimer>
#include <QThread>

namespace tovek {

namespace {

constexpr int patienceMs = 1000;

int connectionCount = 0;

} // namespace

QDBusMessage Portal::call(const QString &interface, const QString &method)
{
    return QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.portal.") + interface, method);
}

QDBusMessage Portal::get(const QString &interface, const QString &property)
{
    QDBusMessage ask = QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    ask << QStringLiteral("org.freedesktop.portal.") + interface << property;
    return ask;
}

PortalBus::PortalBus(const QDBusConnection &bus) : m_connection(QString())
{
    open(bus);
}

PortalBus::~PortalBus()
{
    if (!m_connectionName.isEmpty())
        QDBusConnection::disconnectFromBus(m_connectionName);
}

void PortalBus::setBus(const QDBusConnection &bus)
{
    m_watcher.reset();
    m_naming.reset();
    if (!m_connectionName.isEmpty())
        QDBusConnection::disconnectFromBus(m_connectionName);
    m_connectionName.clear();
    m_connection = QDBusConnection(QString());
    Q_EMIT portalLost();
    open(bus);
    if (isOffered())
        Q_EMIT portalStarted();
}

void PortalBus::open(const QDBusConnection &bus)
{
    if (!bus.isConnected())
        return;
    m_connectionName = QStringLiteral("tovek-portal-%1").arg(++connectionCount);
    m_connection =
        QDBusConnection::connectToBus(QString::fromLatin1(sessionBusAddress()), m_connectionName);
    if (!m_connection.isConnected())
        return;
    m_isLost = false;
    m_watcher = std::make_unique<QDBusServiceWatcher>(Portal::service, m_connection,
                                                      QDBusServiceWatcher::WatchForOwnerChange);
    connect(m_watcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &before, const QString &now) {
                ownerChanged(before, now);
            });
    if (isOffered())
        tellName();
}

bool PortalBus::isOffered() const
{
    if (!m_connection.isConnected())
        return false;
    if (m_connection.interface()->isServiceRegistered(Portal::service))
        return true;
    const QDBusReply<QStringList> startable = m_connection.interface()->activatableServiceNames();
    return startable.isValid() && startable.value().contains(Portal::service);
}

void PortalBus::tellName()
{
    QDBusMessage name = QDBusMessage::createMethodCall(
        Portal::service, Portal::path, QStringLiteral("org.freedesktop.host.portal.Registry"),
        QStringLiteral("Register"));
    name << ownAppId << QVariantMap();
    // Nobody waits here: what is asked next on this connection is answered after it.
    m_naming = m_connection.asyncCall(name);
}

QString PortalBus::appId() const
{
    const QDeadlineTimer deadline(patienceMs);
    while (m_naming && !m_naming->isFinished() && !deadline.hasExpired())
        QThread::usleep(200);
    // Older portals have no such call, and others refuse a program that is not installed.
    if (m_naming && m_naming->isFinished() && !m_naming->isError())
        return ownAppId;
    return hostAppId();
}

QString PortalBus::nextToken()
{
    return QStringLiteral("tovek%1").arg(++m_tokens);
}

void PortalBus::ownerChanged(const QString &before, const QString &now)
{
    if (!before.isEmpty()) {
        m_isLost = true;
        m_naming.reset();
        Q_EMIT portalLost();
    }
    // The first one is started by our own call, and has been told.
    if (!now.isEmpty() && m_isLost) {
        m_isLost = false;
        tellName();
        Q_EMIT portalStarted();
    }
}

} // namespace tovek
