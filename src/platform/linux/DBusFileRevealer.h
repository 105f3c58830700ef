// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/FileRevealer.h"

#include <QDBusConnection>
#include <QObject>

#include <functional>

namespace tovek {

/// Asks the file manager over the session bus; without one, opens the folder.
class DBusFileRevealer : public QObject, public FileRevealer
{
public:
    explicit DBusFileRevealer(QDBusConnection bus = QDBusConnection::sessionBus());
    void setBus(const QDBusConnection &bus) { m_bus = bus; }

    void activateFileViewer(const QUrl &file, const QString &activationToken) override;

    /// For clicks that brought no token. Called only if set.
    std::function<QString()> newActivationToken;
    std::function<void(const QUrl &folder)> openFolder;

private:
    QDBusConnection m_bus;
};

} // namespace tovek
