// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/LockSignals.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

namespace tovek {

/// The session manager of the machine, and the desktops' screen savers. Asks nobody while it waits.
class DBusLockSignals : public QObject, public LockSignals
{
    Q_OBJECT

public:
    /// The machine's bus is connected a moment later: the program starts without it.
    explicit DBusLockSignals(const QDBusConnection &session);
    /// Another session bus, or one that has died.
    void setBus(const QDBusConnection &session);

private Q_SLOTS:
    void activeChanged(bool isActive);
    void prepareForSleep(bool isBeginning);
    void lock(const QDBusMessage &signal);

private:
    void listenToMachine();
    void askOwnSession(const QDBusConnection &machine);
    void tell();

    QString m_ownSession; ///< its path; empty while it is not known
};

} // namespace tovek
