// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/SessionBus.h"

#include "foundation/AskAside.h"
#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/WhenReady.h"
#include "platform/linux/BusProbe.h"

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto firstAnswerLimit = 1s;
constexpr auto searchInterval = 2s;

SessionBus *theBus = nullptr;

QDBusConnection firstConnection(const QByteArray &address)
{
    // Of what the library takes for a mistake of its caller, a connection that just died is one,
    // and it would end the process.
    if (!qEnvironmentVariableIsSet("DBUS_FATAL_WARNINGS"))
        qputenv("DBUS_FATAL_WARNINGS", "0");
    if (!address.isEmpty() && probeBus(address, firstAnswerLimit) == BusHealth::silent) {
        logLine(QStringLiteral("The session bus does not answer; going on without it"));
        // The toolkit would wait for it as well.
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/dev/null");
    }
    return QDBusConnection::sessionBus();
}

} // namespace

SessionBus::SessionBus() : m_address(sessionBusAddress()), m_connection(firstConnection(m_address))
{
    Q_ASSERT(isMainThread());
    theBus = this;
}

SessionBus::~SessionBus()
{
    theBus = nullptr;
}

QDBusConnection SessionBus::current()
{
    return theBus ? theBus->m_connection : QDBusConnection::sessionBus();
}

void SessionBus::startWatching()
{
    m_search.setSingleShot(true);
    m_search.setInterval(searchInterval);
    m_search.callOnTimeout([this] { lookForAnother(); });
    if (m_connection.isConnected())
        listen();
    else if (!m_address.isEmpty())
        m_search.start();
}

void SessionBus::listen()
{
    m_connection.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                         QStringLiteral("org.freedesktop.DBus.Local"),
                         QStringLiteral("Disconnected"), this, SLOT(lost()));
}

void SessionBus::lost()
{
    Q_ASSERT(isMainThread());
    if (m_connection.isConnected())
        return;
    logLine(QStringLiteral("The session bus went away"));
    Q_EMIT changed(m_connection);
    if (!m_address.isEmpty())
        m_search.start();
}

void SessionBus::lookForAnother()
{
    const auto answer =
        askAside<BusHealth>([address = m_address] { return probeBus(address, firstAnswerLimit); });
    whenOver(answer, this, [this](const QFuture<BusHealth> &health) {
        if (health.resultCount() > 0 && health.result() == BusHealth::answers)
            connectAgain();
        else
            m_search.start();
    });
}

void SessionBus::connectAgain()
{
    Q_ASSERT(isMainThread());
    const QDBusConnection bus = QDBusConnection::connectToBus(
        QString::fromLatin1(m_address), QStringLiteral("tovek-%1").arg(++m_serial));
    if (!bus.isConnected()) {
        m_search.start();
        return;
    }
    m_connection = bus;
    listen();
    logLine(QStringLiteral("There is a session bus again"));
    Q_EMIT changed(m_connection);
}

} // namespace tovek
