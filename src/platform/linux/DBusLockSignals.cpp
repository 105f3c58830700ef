// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DBusLockSignals.h"

#include "foundation/AskAside.h"
#include "foundation/WhenReady.h"
#include "platform/linux/BusProbe.h"

#include <QCoreApplication>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QTimer>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto machineDelay = 1s;
constexpr auto answerLimit = 1s;

const QString login = QStringLiteral("org.freedesktop.login1");
const QString manager = QStringLiteral("org.freedesktop.login1.Manager");
const QString managerPath = QStringLiteral("/org/freedesktop/login1");

constexpr const char *savers[] = {
    "org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver", "org.cinnamon.ScreenSaver",
    "org.mate.ScreenSaver",        "org.xfce.ScreenSaver",
};

} // namespace

DBusLockSignals::DBusLockSignals(const QDBusConnection &session)
{
    setBus(session);
    QTimer::singleShot(machineDelay, this, [this] {
        // Whoever connects to a bus that does not answer waits for it.
        whenReady(askAside<BusHealth>([] { return probeBus(systemBusAddress(), answerLimit); }),
                  this, [this](BusHealth health) {
                      if (health == BusHealth::answers)
                          listenToMachine();
                  });
    });
}

void DBusLockSignals::setBus(const QDBusConnection &session)
{
    QDBusConnection bus = session;
    if (!bus.isConnected())
        return;
    // Of no service by name: for that the bus would have to be asked, and waited for.
    for (const char *saver : savers)
        bus.connect(QString(), QString(), QString::fromLatin1(saver),
                    QStringLiteral("ActiveChanged"), this, SLOT(activeChanged(bool)));
}

void DBusLockSignals::listenToMachine()
{
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return;
    bus.connect(QString(), managerPath, manager, QStringLiteral("PrepareForSleep"), this,
                SLOT(prepareForSleep(bool)));
    bus.connect(QString(), QString(), QStringLiteral("org.freedesktop.login1.Session"),
                QStringLiteral("Lock"), this, SLOT(lock(QDBusMessage)));
    askOwnSession(bus);
}

void DBusLockSignals::askOwnSession(const QDBusConnection &machine)
{
    QDBusMessage ask = QDBusMessage::createMethodCall(login, managerPath, manager,
                                                      QStringLiteral("GetSessionByPID"));
    ask << quint32(QCoreApplication::applicationPid());
    const QString id = qEnvironmentVariable("XDG_SESSION_ID");
    if (!id.isEmpty()) {
        ask = QDBusMessage::createMethodCall(login, managerPath, manager,
                                             QStringLiteral("GetSession"));
        ask << id;
    }
    auto *watcher = new QDBusPendingCallWatcher(machine.asyncCall(ask), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusObjectPath> reply = *watcher;
        if (!reply.isError())
            m_ownSession = reply.value().path();
    });
}

void DBusLockSignals::activeChanged(bool isActive)
{
    if (isActive)
        tell();
}

void DBusLockSignals::prepareForSleep(bool isBeginning)
{
    if (isBeginning)
        tell();
}

void DBusLockSignals::lock(const QDBusMessage &signal)
{
    // Other people's sessions are locked as well.
    if (m_ownSession.isEmpty() || signal.path() == m_ownSession)
        tell();
}

void DBusLockSignals::tell()
{
    if (onLocking)
        onLocking();
}

} // namespace tovek
