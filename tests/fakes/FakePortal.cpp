// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakePortal.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QTimer>

namespace tovek {

namespace {

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString storeName = QStringLiteral("org.freedesktop.impl.portal.PermissionStore");

} // namespace

FakePortal::FakePortal(const QString &address, const QString &appId)
    : m_appId(appId)
    , m_name(QStringLiteral("fake portal of ") + address)
{
    qDBusRegisterMetaType<QMap<QString, QStringList>>();
    moveToThread(&m_thread);
    m_thread.start();
    QMetaObject::invokeMethod(
        this,
        [this, address] {
            QDBusConnection bus = QDBusConnection::connectToBus(address, m_name);
            bus.registerVirtualObject(QStringLiteral("/org/freedesktop"), this,
                                      QDBusConnection::SubPath);
            bus.registerService(portalName);
            bus.registerService(storeName);
        },
        Qt::BlockingQueuedConnection);
}

FakePortal::~FakePortal()
{
    QDBusConnection(m_name).unregisterObject(QStringLiteral("/org/freedesktop"),
                                             QDBusConnection::UnregisterTree);
    QDBusConnection::disconnectFromBus(m_name);
    m_thread.quit();
    m_thread.wait();
}

void FakePortal::set(const PortalScript &script)
{
    const QMutexLocker lock(&m_mutex);
    m_script = script;
}

void FakePortal::setPermission(const QString &appId, const QString &permission)
{
    const QMutexLocker lock(&m_mutex);
    m_permissions[appId] = QStringList{permission};
}

QString FakePortal::permission(const QString &appId) const
{
    const QMutexLocker lock(&m_mutex);
    return m_permissions.value(appId).value(0);
}

QStringList FakePortal::calls() const
{
    const QMutexLocker lock(&m_mutex);
    return m_calls;
}

void FakePortal::restart()
{
    QDBusConnection bus(m_name);
    bus.unregisterService(portalName);
    bus.registerService(portalName);
}

QString FakePortal::introspect(const QString &) const
{
    return {};
}

bool FakePortal::handleMessage(const QDBusMessage &message, const QDBusConnection &bus)
{
    QMutexLocker lock(&m_mutex);
    const PortalScript script = m_script;
    m_calls << message.member();
    lock.unlock();
    if (message.interface() == storeName)
        return bus.send(answerOfStore(message));
    if (message.member() == QLatin1String("Close"))
        return bus.send(message.createReply());
    const bool isName = message.member() == QLatin1String("Register");
    if (isName ? !script.takesNames : !script.offersScreenshots)
        return bus.send(message.createErrorReply(QDBusError::UnknownMethod,
                                                 QStringLiteral("No such interface")));
    if (isName)
        return bus.send(message.createReply());
    answerRequest(message, script);
    return true;
}

void FakePortal::answerRequest(const QDBusMessage &message, const PortalScript &script)
{
    QString sender = message.service().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    QVariantMap options;
    message.arguments().last().value<QDBusArgument>() >> options;
    const QString path = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
                             .arg(sender, options.value(QStringLiteral("handle_token")).toString());
    QDBusConnection bus(m_name);
    bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(path))));
    if (script.isSilent)
        return;
    QTimer::singleShot(script.delay, this, [this, path, script, target = message.service()] {
        if (!script.permissionAfterwards.isEmpty())
            setPermission(m_appId, script.permissionAfterwards);
        QDBusMessage response = QDBusMessage::createTargetedSignal(
            target, path, QStringLiteral("org.freedesktop.portal.Request"),
            QStringLiteral("Response"));
        response << script.code << script.results;
        for (int i = 0; i < script.answers; ++i)
            QDBusConnection(m_name).send(response);
    });
}

QDBusMessage FakePortal::answerOfStore(const QDBusMessage &message)
{
    const QMutexLocker lock(&m_mutex);
    if (message.member() == QLatin1String("DeletePermission")) {
        m_permissions.remove(message.arguments().value(2).toString());
        return message.createReply();
    }
    if (m_permissions.isEmpty())
        return message.createErrorReply(QStringLiteral("org.freedesktop.portal.Error.NotFound"),
                                        QStringLiteral("No entry for screenshot"));
    return message.createReply({QVariant::fromValue(m_permissions),
                                QVariant::fromValue(QDBusVariant(QVariant::fromValue(uchar(0))))});
}

} // namespace tovek
