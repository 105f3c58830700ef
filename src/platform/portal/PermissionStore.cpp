// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PermissionStore.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QMap>

namespace tovek {

namespace {

constexpr int storePatienceMs = 500;
const QString table = QStringLiteral("screenshot");
const QString notFound = QStringLiteral("org.freedesktop.portal.Error.NotFound");

QDBusMessage callOfStore(const QString &method)
{
    const QString name = QStringLiteral("org.freedesktop.impl.portal.PermissionStore");
    return QDBusMessage::createMethodCall(
        name, QStringLiteral("/org/freedesktop/impl/portal/PermissionStore"), name, method);
}

} // namespace

StoredAnswer storedScreenshotAnswer(const QDBusConnection &bus, const QString &appId)
{
    QDBusMessage look = callOfStore(QStringLiteral("Lookup"));
    look << table << table;
    const QDBusMessage reply = bus.call(look, QDBus::Block, storePatienceMs);
    if (reply.type() == QDBusMessage::ErrorMessage)
        return reply.errorName() == notFound ? StoredAnswer::none : StoredAnswer::unknown;
    QMap<QString, QStringList> answers;
    if (!reply.arguments().isEmpty())
        reply.arguments().first().value<QDBusArgument>() >> answers;
    const QString answer = answers.value(appId).value(0);
    if (answer == QLatin1String("yes"))
        return StoredAnswer::yes;
    if (answer == QLatin1String("no"))
        return StoredAnswer::no;
    return answer == QLatin1String("ask") ? StoredAnswer::askEachTime : StoredAnswer::none;
}

QString forgetScreenshotAnswer(const QDBusConnection &bus, const QString &appId)
{
    QDBusMessage forget = callOfStore(QStringLiteral("DeletePermission"));
    forget << table << table << appId;
    const QDBusMessage reply = bus.call(forget, QDBus::Block, storePatienceMs);
    return reply.type() == QDBusMessage::ErrorMessage ? reply.errorMessage() : QString();
}

} // namespace tovek
