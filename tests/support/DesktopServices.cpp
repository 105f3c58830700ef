// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/DesktopServices.h"

namespace tovek {

namespace {

const QString notificationsService = QStringLiteral("org.freedesktop.Notifications");
const QString notificationsPath = QStringLiteral("/org/freedesktop/Notifications");
const QString fileManagerService = QStringLiteral("org.freedesktop.FileManager1");
const QString fileManagerPath = QStringLiteral("/org/freedesktop/FileManager1");

} // namespace

bool NotificationServer::start(QDBusConnection bus)
{
    return bus.registerObject(notificationsPath, this, QDBusConnection::ExportAllContents)
        && bus.registerService(notificationsService);
}

void NotificationServer::stop(QDBusConnection bus)
{
    bus.unregisterService(notificationsService);
    bus.unregisterObject(notificationsPath);
}

QStringList NotificationServer::GetCapabilities()
{
    if (hangs)
        setDelayedReply(true);
    return capabilities;
}

uint NotificationServer::Notify(const QString &, uint replaces, const QString &,
                                const QString &title, const QString &body,
                                const QStringList &actions, const QVariantMap &hints, int)
{
    if (hangs) {
        setDelayedReply(true);
        return 0;
    }
    shown.push_back({title, body, actions, hints, replaces});
    return number(shown.size() - 1);
}

bool FileManagerService::start(QDBusConnection bus)
{
    return bus.registerObject(fileManagerPath, this, QDBusConnection::ExportAllSlots)
        && bus.registerService(fileManagerService);
}

void FileManagerService::stop(QDBusConnection bus)
{
    bus.unregisterService(fileManagerService);
    bus.unregisterObject(fileManagerPath);
}

void FileManagerService::ShowItems(const QStringList &uris, const QString &id)
{
    shown += uris;
    startupId = id;
}

} // namespace tovek
