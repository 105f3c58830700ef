// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/BusProbe.h"

#include <QDeadlineTimer>
#include <QList>

#include <cstring>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tovek {

namespace {

/// A descriptor that is closed at the end.
class Socket
{
public:
    Socket() : m_descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) { }
    ~Socket()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    Socket(const Socket &) = delete;
    Socket &operator=(const Socket &) = delete;
    operator int() const { return m_descriptor; }

private:
    int m_descriptor;
};

struct UnixAddress
{
    sockaddr_un name{};
    socklen_t size = 0;
};

/// Of one entry like "unix:path=/run/user/1000/bus,guid=..."; absent for other kinds.
std::optional<UnixAddress> unixAddress(const QByteArray &entry)
{
    if (!entry.startsWith("unix:"))
        return std::nullopt;
    for (const QByteArray &pair : entry.mid(5).split(',')) {
        const QByteArray value = QByteArray::fromPercentEncoding(pair.mid(pair.indexOf('=') + 1));
        UnixAddress address;
        address.name.sun_family = AF_UNIX;
        const bool isAbstract = pair.startsWith("abstract=");
        if (!(isAbstract || pair.startsWith("path="))
            || size_t(value.size()) + 2 > sizeof address.name.sun_path)
            continue;
        std::memcpy(address.name.sun_path + (isAbstract ? 1 : 0), value.constData(),
                    size_t(value.size()));
        address.size = socklen_t(offsetof(sockaddr_un, sun_path) + size_t(value.size()) + 1);
        return address;
    }
    return std::nullopt;
}

bool isReadable(int descriptor, const QDeadlineTimer &deadline)
{
    pollfd wait{descriptor, POLLIN, 0};
    return poll(&wait, 1, int(deadline.remainingTime())) > 0;
}

BusHealth probe(const UnixAddress &address, std::chrono::milliseconds limit)
{
    const QDeadlineTimer deadline(limit);
    const Socket bus;
    if (bus < 0)
        return BusHealth::answers; // no descriptors: that is for others to tell
    if (connect(bus, reinterpret_cast<const sockaddr *>(&address.name), address.size) != 0) {
        // Full of connections that nobody accepts, or nothing there.
        return errno == EAGAIN ? BusHealth::silent : BusHealth::absent;
    }
    const QByteArray user = QByteArray::number(getuid()).toHex();
    const QByteArray question = QByteArray(1, '\0') + "AUTH EXTERNAL " + user + "\r\n";
    if (send(bus, question.constData(), size_t(question.size()), MSG_NOSIGNAL) != question.size())
        return BusHealth::silent;
    return isReadable(bus, deadline) ? BusHealth::answers : BusHealth::silent;
}

} // namespace

BusHealth probeBus(const QByteArray &address, std::chrono::milliseconds limit)
{
    BusHealth worst = BusHealth::absent;
    for (const QByteArray &entry : address.split(';')) {
        const auto name = unixAddress(entry);
        if (!name)
            return BusHealth::answers;
        // Those after it would be tried only where it is absent.
        worst = probe(*name, limit);
        if (worst != BusHealth::absent)
            return worst;
    }
    return worst;
}

QByteArray sessionBusAddress()
{
    const QByteArray told = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    if (!told.isEmpty() || folder.isEmpty())
        return told;
    const QByteArray usual = folder + "/bus";
    return access(usual.constData(), F_OK) == 0 ? "unix:path=" + usual : QByteArray();
}

QByteArray systemBusAddress()
{
    const QByteArray told = qgetenv("DBUS_SYSTEM_BUS_ADDRESS");
    return told.isEmpty() ? QByteArray("unix:path=/run/dbus/system_bus_socket") : told;
}

} // namespace tovek
