// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/SingleInstance.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

namespace tovek {

/// One name on the session bus; whoever has it is the program. Others reach it through
/// org.freedesktop.Application, as desktops do when they launch a desktop file.
class DBusSingleInstance : public QObject, public SingleInstance
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    Role claim() override;
    /// Claims the name on another bus than that of the start. Who has it there already keeps it.
    void setBus(const QDBusConnection &bus);
    void reopenFirst() override;
    QString askFirst(const QString &action, int delaySeconds) override;

    static const QStringList &actions();

public Q_SLOTS:
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &uris, const QVariantMap &platformData);
    void ActivateAction(const QString &action, const QVariantList &parameter,
                        const QVariantMap &platformData);

private:
    Role claimOn(QDBusConnection bus);
};

} // namespace tovek
