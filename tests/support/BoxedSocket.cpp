// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/BoxedSocket.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>
#include <set>
#include <string_view>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tovek {

namespace {

constexpr std::string_view keptBack[] = {"zwlr_", "ext_", "zwp_virtual_keyboard", "org_kde_"};
constexpr uint32_t displayId = 1;
constexpr uint16_t getRegistry = 1;
constexpr uint16_t global = 0;
constexpr size_t headBytes = 8;
constexpr size_t mostDescriptors = 28; // the library sends no more at a time

int openSocket(const QString &path, sockaddr_un &address)
{
    address = {};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path);
    std::strncpy(address.sun_path, name.constData(), sizeof address.sun_path - 1);
    return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

uint32_t wordAt(const char *bytes)
{
    uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// What passes between one program and the compositor.
class Passage
{
public:
    Passage(int program, int compositor) : m_program(program), m_compositor(compositor) { }
    ~Passage()
    {
        stop();
        for (std::thread *way : {&m_in, &m_out})
            way->join();
        close(m_program);
        close(m_compositor);
    }
    Passage(const Passage &) = delete;
    Passage &operator=(const Passage &) = delete;

    void start()
    {
        m_out = std::thread([this] { pass(m_program, m_compositor); });
        m_in = std::thread([this] { pass(m_compositor, m_program); });
    }

private:
    void stop() const
    {
        shutdown(m_program, SHUT_RDWR);
        shutdown(m_compositor, SHUT_RDWR);
    }
    void pass(int from, int to)
    {
        std::vector<char> bytes;
        std::vector<int> descriptors;
        while (receive(from, bytes, descriptors)) {
            std::vector<char> passed;
            size_t at = 0;
            while (bytes.size() - at >= headBytes) {
                const size_t size = wordAt(&bytes[at] + 4) >> 16;
                if (size < headBytes || bytes.size() - at < size)
                    break;
                if (from == m_program ? isPassedOut(&bytes[at]) : isPassedIn(&bytes[at], size))
                    passed.insert(passed.end(), &bytes[at], &bytes[at] + size);
                at += size;
            }
            bytes.erase(bytes.begin(), bytes.begin() + std::ptrdiff_t(at));
            if (!passed.empty() && !send(to, passed, descriptors))
                break;
        }
        stop();
    }
    bool isPassedOut(const char *message)
    {
        const std::lock_guard lock(m_lock);
        if (wordAt(message) == displayId && uint16_t(wordAt(message + 4)) == getRegistry)
            m_registries.insert(wordAt(message + headBytes));
        return true;
    }
    bool isPassedIn(const char *message, size_t size)
    {
        const std::lock_guard lock(m_lock);
        if (!m_registries.contains(wordAt(message)) || uint16_t(wordAt(message + 4)) != global)
            return true;
        const size_t nameAt = headBytes + 8;
        const std::string_view name(
            message + nameAt, std::min(size - nameAt, size_t(wordAt(message + headBytes + 4))));
        return std::none_of(std::begin(keptBack), std::end(keptBack),
                            [&](std::string_view start) { return name.starts_with(start); });
    }
    static bool receive(int from, std::vector<char> &bytes, std::vector<int> &descriptors)
    {
        std::array<char, 65536> room{};
        alignas(cmsghdr) std::array<char, CMSG_SPACE(mostDescriptors * sizeof(int))> aside{};
        iovec part{room.data(), room.size()};
        msghdr message{};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        message.msg_control = aside.data();
        message.msg_controllen = aside.size();
        const ssize_t count = recvmsg(from, &message, MSG_CMSG_CLOEXEC);
        if (count <= 0)
            return false;
        for (cmsghdr *head = CMSG_FIRSTHDR(&message); head; head = CMSG_NXTHDR(&message, head)) {
            const size_t known = descriptors.size();
            const size_t more = (head->cmsg_len - CMSG_LEN(0)) / sizeof(int);
            descriptors.resize(known + more);
            std::memcpy(&descriptors[known], CMSG_DATA(head), more * sizeof(int));
        }
        bytes.insert(bytes.end(), room.data(), room.data() + count);
        return true;
    }
    static bool send(int to, const std::vector<char> &bytes, std::vector<int> &descriptors)
    {
        alignas(cmsghdr) std::array<char, CMSG_SPACE(mostDescriptors * sizeof(int))> aside{};
        iovec part{const_cast<char *>(bytes.data()), bytes.size()};
        msghdr message{};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        const size_t count = std::min(descriptors.size(), mostDescriptors);
        if (count > 0) {
            message.msg_control = aside.data();
            message.msg_controllen = CMSG_SPACE(count * sizeof(int));
            cmsghdr *head = CMSG_FIRSTHDR(&message);
            head->cmsg_level = SOL_SOCKET;
            head->cmsg_type = SCM_RIGHTS;
            head->cmsg_len = CMSG_LEN(count * sizeof(int));
            std::memcpy(CMSG_DATA(head), descriptors.data(), count * sizeof(int));
        }
        // A socket that waits takes all of it.
        const bool isSent = sendmsg(to, &message, MSG_NOSIGNAL) == ssize_t(bytes.size());
        for (size_t i = 0; i < count; ++i)
            close(descriptors[i]);
        descriptors.erase(descriptors.begin(), descriptors.begin() + std::ptrdiff_t(count));
        return isSent;
    }

    const int m_program, m_compositor;
    std::mutex m_lock;
    std::set<uint32_t> m_registries;
    std::thread m_in, m_out;
};

} // namespace

struct BoxedSocket::Listener
{
    Listener(const QString &path, const QString &compositor)
    {
        sockaddr_un address{};
        socket = openSocket(path, address);
        isListening = bind(socket, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0
            && chmod(address.sun_path, 0777) == 0 && listen(socket, 8) == 0;
        thread = std::thread([this, compositor] { serve(compositor); });
    }
    ~Listener()
    {
        shutdown(socket, SHUT_RDWR);
        thread.join();
        close(socket);
    }
    void serve(const QString &compositor)
    {
        for (int program = -1; (program = accept(socket, nullptr, nullptr)) >= 0;) {
            sockaddr_un address{};
            const int upstream = openSocket(compositor, address);
            if (connect(upstream, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0) {
                close(program);
                close(upstream);
                continue;
            }
            passages.push_back(std::make_unique<Passage>(program, upstream));
            passages.back()->start();
        }
    }

    int socket = -1;
    bool isListening = false;
    std::vector<std::unique_ptr<Passage>> passages;
    std::thread thread;
};

BoxedSocket::BoxedSocket(const QString &path, const QString &compositor)
    : m_listener(std::make_unique<Listener>(path, compositor))
{
}

BoxedSocket::~BoxedSocket() = default;

bool BoxedSocket::isListening() const
{
    return m_listener->isListening;
}

} // namespace tovek
