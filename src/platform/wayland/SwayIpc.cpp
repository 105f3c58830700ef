// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/SwayIpc.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 500ms;
constexpr char magic[] = {'i', '3', '-', 'i', 'p', 'c'};

/// What stands before each message, in the machine's byte order.
struct Header
{
    quint32 length = 0;
    SwayIpc::Type type = SwayIpc::Type::runCommand;
};
constexpr qsizetype headerSize = sizeof(magic) + sizeof(Header);
/// No answer is as long, so what claims to be is none.
constexpr quint32 longestPayload = 64 * 1024 * 1024;

} // namespace

std::unique_ptr<SwayIpc> SwayIpc::create(const QString &socketPath)
{
    const QByteArray path = QFile::encodeName(socketPath);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.isEmpty() || size_t(path.size()) >= sizeof(address.sun_path))
        return nullptr;
    std::memcpy(address.sun_path, path.constData(), size_t(path.size()));
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (socket < 0)
        return nullptr;
    if (connect(socket, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) != 0) {
        close(socket);
        return nullptr;
    }
    // The constructor is private.
    return std::unique_ptr<SwayIpc>(new SwayIpc(socket));
}

SwayIpc::SwayIpc(int socket) : m_socket(socket) { }

SwayIpc::~SwayIpc()
{
    close(m_socket);
}

std::optional<QJsonDocument> SwayIpc::ask(Type type, const QByteArray &payload)
{
    const auto deadline = Clock::now() + patience;
    if (!send(type, payload, deadline))
        return std::nullopt;
    do {
        read();
        if (const auto answer = nextMessage(); answer && answer->type == type)
            return QJsonDocument::fromJson(answer->payload);
    } while (m_isConnected && waitFor(POLLIN, deadline));
    // An answer that comes now would be taken for that of the next question.
    m_isConnected = false;
    return std::nullopt;
}

bool SwayIpc::run(const QString &command)
{
    const auto answer = ask(Type::runCommand, command.toUtf8());
    const QJsonArray results = answer ? answer->array() : QJsonArray();
    return !results.isEmpty()
        && results.first().toObject().value(QLatin1String("success")).toBool();
}

std::vector<SwayIpc::Message> SwayIpc::take()
{
    read();
    std::vector<Message> messages;
    while (auto message = nextMessage())
        messages.push_back(std::move(*message));
    return messages;
}

bool SwayIpc::waitFor(short events, Clock::time_point deadline)
{
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    pollfd socket{m_socket, events, 0};
    return left > 0ms && poll(&socket, 1, int(left.count())) > 0;
}

bool SwayIpc::send(Type type, const QByteArray &payload, Clock::time_point deadline)
{
    const Header header{quint32(payload.size()), type};
    QByteArray bytes(magic, sizeof(magic));
    bytes.append(reinterpret_cast<const char *>(&header), sizeof(header)).append(payload);
    for (qsizetype sent = 0; m_isConnected && sent < bytes.size();) {
        const ssize_t count =
            ::send(m_socket, bytes.constData() + sent, size_t(bytes.size() - sent), MSG_NOSIGNAL);
        if (count > 0)
            sent += count;
        else if (errno == EAGAIN ? !waitFor(POLLOUT, deadline) : errno != EINTR)
            m_isConnected = false;
    }
    return m_isConnected;
}

void SwayIpc::read()
{
    char buffer[16 * 1024];
    while (m_isConnected) {
        const ssize_t count = recv(m_socket, buffer, sizeof(buffer), 0);
        if (count > 0)
            m_unread.append(buffer, count);
        else if (count == 0 || (errno != EAGAIN && errno != EINTR))
            m_isConnected = false;
        else if (errno == EAGAIN)
            break;
    }
}

std::optional<SwayIpc::Message> SwayIpc::nextMessage()
{
    if (m_unread.size() < headerSize)
        return std::nullopt;
    Header header;
    std::memcpy(&header, m_unread.constData() + sizeof(magic), sizeof(header));
    if (std::memcmp(m_unread.constData(), magic, sizeof(magic)) != 0
        || header.length > longestPayload) {
        m_isConnected = false;
        m_unread.clear();
        return std::nullopt;
    }
    if (m_unread.size() - headerSize < qsizetype(header.length))
        return std::nullopt;
    Message message{header.type, m_unread.mid(headerSize, header.length)};
    m_unread.remove(0, headerSize + header.length);
    return message;
}

} // namespace tovek
