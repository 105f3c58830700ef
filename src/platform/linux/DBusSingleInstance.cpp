// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DBusSingleInstance.h"

#include "foundation/Log.h"
#include "platform/linux/SessionBus.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

namespace tovek {

namespace {

const auto busName = QStringLiteral("org.tovek.Tovek");
const auto objectPath = QStringLiteral("/org/tovek/Tovek");
const auto interfaceName = QStringLiteral("org.freedesktop.Application");
constexpr int activationTimeoutMs = 5000;

} // namespace

SingleInstance::Role DBusSingleInstance::claim()
{
    return claimOn(SessionBus::current());
}

void DBusSingleInstance::setBus(const QDBusConnection &bus)
{
    claimOn(bus);
}

SingleInstance::Role DBusSingleInstance::claimOn(QDBusConnection bus)
{
    if (!bus.isConnected())
        return Role::alone;
    // The object first: whoever finds the name must find the object behind it.
    bus.registerObject(objectPath, this, QDBusConnection::ExportAllSlots);
    const auto reply =
        bus.interface()->registerService(busName, QDBusConnectionInterface::DontQueueService,
                                         QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid()) {
        logLine(
            QStringLiteral("Failed to become the only instance: %1").arg(reply.error().message()));
        return Role::alone;
    }
    if (reply.value() == QDBusConnectionInterface::ServiceRegistered)
        return Role::first;
    bus.unregisterObject(objectPath);
    return Role::second;
}

void DBusSingleInstance::reopenFirst()
{
    QDBusMessage activate = QDBusMessage::createMethodCall(busName, objectPath, interfaceName,
                                                           QStringLiteral("Activate"));
    activate << QVariantMap();
    const QDBusMessage answer =
        SessionBus::current().call(activate, QDBus::Block, activationTimeoutMs);
    if (answer.type() == QDBusMessage::ErrorMessage)
        logLine(
            QStringLiteral("Failed to reach the running instance: %1").arg(answer.errorMessage()));
}

const QStringList &DBusSingleInstance::actions()
{
    static const QStringList names{
        QStringLiteral("start-capture"), QStringLiteral("capture-image"),
        QStringLiteral("capture-text"),  QStringLiteral("preferences"),
        QStringLiteral("about"),         QStringLiteral("check-for-updates"),
        QStringLiteral("quit"),
    };
    return names;
}

void DBusSingleInstance::Activate(const QVariantMap &)
{
    if (onReopen)
        onReopen();
}

void DBusSingleInstance::Open(const QStringList &, const QVariantMap &)
{
    if (onReopen)
        onReopen();
}

void DBusSingleInstance::ActivateAction(const QString &action, const QVariantList &,
                                        const QVariantMap &)
{
    if (!actions().contains(action)) {
        logLine(QStringLiteral("Unknown action from outside: %1").arg(action));
        return;
    }
    if (onAction)
        onAction(action);
}

} // namespace tovek
