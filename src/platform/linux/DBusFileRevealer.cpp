// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DBusFileRevealer.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QUrl>

namespace tovek {

DBusFileRevealer::DBusFileRevealer(QDBusConnection bus)
    : openFolder([](const QUrl &folder) { QDesktopServices::openUrl(folder); })
    , m_bus(std::move(bus))
{
}

void DBusFileRevealer::activateFileViewer(const QUrl &file, const QString &activationToken)
{
    if (!file.isLocalFile())
        return;
    if (!m_bus.isConnected())
        return openFolder(file.adjusted(QUrl::RemoveFilename));
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    const bool isTokenMissing = activationToken.isEmpty() && newActivationToken;
    message << QStringList{file.toString(QUrl::FullyEncoded)}
            << (isTokenMissing ? newActivationToken() : activationToken);
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, file] {
        watcher->deleteLater();
        if (watcher->isError())
            openFolder(file.adjusted(QUrl::RemoveFilename));
    });
}

} // namespace tovek
