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
const QString shortcutsInterface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");

struct FakeShortcut
{
    QString name;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &out, const FakeShortcut &shortcut)
{
    out.beginStructure();
    out << shortcut.name << shortcut.properties;
    out.endStructure();
    return out;
}

const QDBusArgument &operator>>(const QDBusArgument &in, FakeShortcut &shortcut)
{
    in.beginStructure();
    in >> shortcut.name >> shortcut.properties;
    in.endStructure();
    return in;
}

QString fileNameOf(QString sender)
{
    return sender.remove(QLatin1Char(':')).replace(QLatin1Char('.'), QLatin1Char('_'));
}

/// The last argument of every request.
QVariantMap optionsOf(const QDBusMessage &message)
{
    QVariantMap options;
    message.arguments().last().value<QDBusArgument>() >> options;
    return options;
}

} // namespace

} // namespace tovek

Q_DECLARE_METATYPE(tovek::FakeShortcut)

namespace tovek {

FakePortal::FakePortal(const QString &address, const QString &appId)
    : m_appId(appId)
    , m_name(QStringLiteral("fake portal of ") + address)
{
    qDBusRegisterMetaType<QMap<QString, QStringList>>();
    qDBusRegisterMetaType<FakeShortcut>();
    qDBusRegisterMetaType<QList<FakeShortcut>>();
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

QVariantMap FakePortal::lastOptions() const
{
    const QMutexLocker lock(&m_mutex);
    return m_lastOptions;
}

void FakePortal::restart()
{
    QDBusConnection bus(m_name);
    bus.unregisterService(portalName);
    {
        const QMutexLocker lock(&m_mutex);
        m_sessions.clear();
    }
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
    if (message.member() == QLatin1String("Close")) {
        m_sessions.remove(message.path());
        return bus.send(message.createReply());
    }
    lock.unlock();
    if (message.interface() == storeName)
        return bus.send(answerOfStore(message));
    if (message.member() == QLatin1String("Get"))
        return bus.send(version(message, script));
    const bool isName = message.member() == QLatin1String("Register");
    const bool isOffered = isName                   ? script.takesNames
        : message.interface() == shortcutsInterface ? script.offersShortcuts
                                                    : script.offersScreenshots;
    if (!isOffered)
        return bus.send(message.createErrorReply(QDBusError::UnknownMethod,
                                                 QStringLiteral("No such interface")));
    if (isName)
        return bus.send(message.createReply());
    lock.relock();
    m_lastOptions = optionsOf(message);
    lock.unlock();
    answerRequest(message, script, resultsOf(message, script));
    return true;
}

QDBusMessage FakePortal::version(const QDBusMessage &message, const PortalScript &script) const
{
    if (message.arguments().value(0).toString() == shortcutsInterface && !script.offersShortcuts)
        return message.createErrorReply(QDBusError::InvalidArgs,
                                        QStringLiteral("No such interface"));
    return message.createReply(QVariant::fromValue(QDBusVariant(1U)));
}

QVariantMap FakePortal::resultsOf(const QDBusMessage &message, const PortalScript &script)
{
    const QMutexLocker lock(&m_mutex);
    if (message.member() == QLatin1String("CreateSession")) {
        const QString path =
            QStringLiteral("/org/freedesktop/portal/desktop/session/%1/%2")
                .arg(fileNameOf(message.service()),
                     optionsOf(message).value(QStringLiteral("session_handle_token")).toString());
        m_sessions[path] = {message.service(), {}};
        return {{QStringLiteral("session_handle"), path}};
    }
    if (message.member() != QLatin1String("BindShortcuts"))
        return script.results;
    QList<FakeShortcut> asked, given;
    message.arguments().at(1).value<QDBusArgument>() >> asked;
    Session &session = m_sessions[message.arguments().at(0).value<QDBusObjectPath>().path()];
    for (const FakeShortcut &shortcut : std::as_const(asked)) {
        const QString trigger =
            shortcut.properties.value(QStringLiteral("preferred_trigger")).toString();
        if (script.refusedShortcuts.contains(trigger))
            continue;
        given << shortcut;
        session.shortcuts << shortcut.name
                + QStringLiteral(" (%1) on %2")
                      .arg(shortcut.properties.value(QStringLiteral("description")).toString(),
                           trigger);
    }
    return {{QStringLiteral("shortcuts"), QVariant::fromValue(given)}};
}

QStringList FakePortal::shortcuts() const
{
    const QMutexLocker lock(&m_mutex);
    QStringList all;
    for (const Session &session : m_sessions)
        all += session.shortcuts;
    return all;
}

void FakePortal::press(const QString &name)
{
    tellKey("Activated", name);
}

void FakePortal::letGo(const QString &name)
{
    tellKey("Deactivated", name);
}

void FakePortal::tellKey(const char *signal, const QString &name)
{
    const QMutexLocker lock(&m_mutex);
    for (auto session = m_sessions.begin(); session != m_sessions.end(); ++session) {
        QDBusMessage told = QDBusMessage::createTargetedSignal(
            session->client, QStringLiteral("/org/freedesktop/portal/desktop"), shortcutsInterface,
            QLatin1String(signal));
        told << QVariant::fromValue(QDBusObjectPath(session.key())) << name
             << QVariant::fromValue(qulonglong(0)) << QVariantMap();
        QDBusConnection(m_name).send(told);
    }
}

void FakePortal::answerRequest(const QDBusMessage &message, const PortalScript &script,
                               const QVariantMap &results)
{
    const QString path =
        QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
            .arg(fileNameOf(message.service()),
                 optionsOf(message).value(QStringLiteral("handle_token")).toString());
    QDBusConnection bus(m_name);
    bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(path))));
    if (script.isSilent)
        return;
    QTimer::singleShot(script.delay, this,
                       [this, path, script, results, target = message.service()] {
                           if (!script.permissionAfterwards.isEmpty())
                               setPermission(m_appId, script.permissionAfterwards);
                           QDBusMessage response = QDBusMessage::createTargetedSignal(
                               target, path, QStringLiteral("org.freedesktop.portal.Request"),
                               QStringLiteral("Response"));
                           response << script.code << results;
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
