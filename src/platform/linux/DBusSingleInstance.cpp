// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DBusSingleInstance.h"

#include "foundation/Log.h"
#include "platform/linux/SessionBus.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

#include <algorithm>

namespace tovek {

namespace {

const auto busName = QStringLiteral("org.tovek.Tovek");
const auto objectPath = QStringLiteral("/org/tovek/Tovek");
const auto interfaceName = QStringLiteral("org.freedesktop.Application");
constexpr int activationTimeoutMs = 5000;
constexpr int longestDelaySeconds = 3600;

/// The reason when the running instance did not take it, otherwise an empty text.
QString callFirst(const QString &method, const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(busName, objectPath, interfaceName, method);
    call.setArguments(arguments);
    const QDBusMessage answer = SessionBus::current().call(call, QDBus::Block, activationTimeoutMs);
    return answer.type() == QDBusMessage::ErrorMessage
        ? QStringLiteral("Failed to reach the running instance: %1").arg(answer.errorMessage())
        : QString();
}

/// 0 where the action came without one, as from a desktop file.
int delayOf(const QVariantList &parameter)
{
    return std::clamp(parameter.value(0).toInt(), 0, longestDelaySeconds);
}

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
    const QString error = callFirst(QStringLiteral("Activate"), {QVariantMap()});
    if (!error.isEmpty())
        logLine(error);
}

QString DBusSingleInstance::askFirst(const QString &action, int delaySeconds)
{
    QVariantList parameter;
    if (delaySeconds > 0)
        parameter += delaySeconds;
    return callFirst(QStringLiteral("ActivateAction"),
                     {action, QVariant(parameter), QVariantMap()});
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

void DBusSingleInstance::ActivateAction(const QString &action, const QVariantList &parameter,
                                        const QVariantMap &)
{
    if (!actions().contains(action)) {
        logLine(QStringLiteral("Unknown action from outside: %1").arg(action));
        return;
    }
    if (onAction)
        onAction(action, delayOf(parameter));
}

} // namespace tovek
