// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <vector>

namespace tovek {

/// A notification server on a test's bus, which remembers what it was told to show. The numbers
/// that it gives are 101, 102, ...
class NotificationServer : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Shown
    {
        QString title, body;
        QStringList actions;
        QVariantMap hints;
        uint replaces = 0;
    };

    /// Takes over the service; false when somebody has it.
    [[nodiscard]] bool start(QDBusConnection bus);
    void stop(QDBusConnection bus);
    static uint number(size_t index) { return uint(101 + index); }

    QStringList capabilities;
    std::vector<Shown> shown;
    bool hangs = false; ///< takes calls and never answers

public Q_SLOTS:
    QStringList GetCapabilities();
    uint Notify(const QString &program, uint replaces, const QString &icon, const QString &title,
                const QString &body, const QStringList &actions, const QVariantMap &hints,
                int timeoutMs);

Q_SIGNALS:
    void ActivationToken(uint id, const QString &token);
    void ActionInvoked(uint id, const QString &action);
    void NotificationClosed(uint id, uint reason);
};

/// A file manager on a test's bus, which remembers what it was asked to show.
class FileManagerService : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    [[nodiscard]] bool start(QDBusConnection bus);
    void stop(QDBusConnection bus);

    QStringList shown; ///< URLs
    QString startupId; ///< of the last call

public Q_SLOTS:
    void ShowItems(const QStringList &uris, const QString &startupId);
};

} // namespace tovek
