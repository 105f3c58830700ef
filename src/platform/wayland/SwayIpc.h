// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QString>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace tovek {

/// One connection to the socket on which sway takes commands and tells of events. Knows no event
/// loop: call `take` when the file descriptor is readable.
class SwayIpc
{
public:
    // The values that the wire has.
    enum class Type : quint32 {
        runCommand = 0,
        subscribe = 2,
        tree = 4,
        config = 9,
        inputs = 100,
        workspaceEvent = 0x80000000,
        bindingEvent = 0x80000005,
        inputEvent = 0x80000015,
    };
    struct Message
    {
        Type type = Type::runCommand;
        QByteArray payload;
    };

    /// Null where nobody listens there.
    static std::unique_ptr<SwayIpc> create(const QString &socketPath);
    ~SwayIpc();
    SwayIpc(const SwayIpc &) = delete;
    SwayIpc &operator=(const SwayIpc &) = delete;

    int fileDescriptor() const { return m_socket; }
    bool isConnected() const { return m_isConnected; }
    /// Waits for the answer, half a second at most. Absent when none came; the connection is then
    /// of no more use. Not for a connection that has subscribed to anything.
    std::optional<QJsonDocument> ask(Type type, const QByteArray &payload = {});
    /// Runs one command. False when sway refuses it.
    bool run(const QString &command);
    /// What has arrived, without waiting.
    std::vector<Message> take();

private:
    using Clock = std::chrono::steady_clock;

    explicit SwayIpc(int socket);
    bool waitFor(short events, Clock::time_point deadline);
    bool send(Type type, const QByteArray &payload, Clock::time_point deadline);
    void read();
    std::optional<Message> nextMessage();

    int m_socket;
    bool m_isConnected = true;
    QByteArray m_unread;
};

} // namespace tovek
