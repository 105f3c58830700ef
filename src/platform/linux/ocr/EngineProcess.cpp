// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/ocr/EngineProcess.h"

#include "platform/linux/ocr/LineProtocol.h"

#include <array>
#include <cstring>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>

namespace tovek {

namespace {

using namespace LineProtocol;

static_assert(LineStrip::height == stripHeight);

bool sendAll(int fd, const void *from, std::size_t size)
{
    const auto *at = static_cast<const char *>(from);
    while (size > 0) {
        const ssize_t sent = ::send(fd, at, size, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent <= 0)
            return false;
        at += sent;
        size -= std::size_t(sent);
    }
    return true;
}

/// Our environment with the engine's own threads switched off: there is one process a core.
std::vector<char *> singleThreadedEnvironment()
{
    static char limit[] = "OMP_THREAD_LIMIT=1";
    std::vector<char *> result{limit};
    for (char **variable = environ; *variable; ++variable) {
        if (std::strncmp(*variable, "OMP_THREAD_LIMIT=", 17) != 0)
            result.push_back(*variable);
    }
    result.push_back(nullptr);
    return result;
}

int spawn(const EngineSetup &setup, int socket)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, socket, STDIN_FILENO);
    // What the libraries print is no log line of ours.
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    QByteArray program = setup.program;
    QByteArray dataFolder = setup.dataFolder;
    QByteArray languages = setup.languages;
    const std::array<char *, 4> arguments{program.data(), dataFolder.data(), languages.data(),
                                          nullptr};
    std::vector<char *> environment = singleThreadedEnvironment();
    pid_t child = 0;
    const int error = posix_spawn(&child, program.constData(), &actions, nullptr, arguments.data(),
                                  environment.data());
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? int(child) : -1;
}

} // namespace

std::unique_ptr<LineEngine> EngineProcess::create(const EngineSetup &setup)
{
    std::array<int, 2> sockets{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.data()) != 0)
        return nullptr;
    const int child = spawn(setup, sockets[1]);
    ::close(sockets[1]);
    if (child < 0) {
        ::close(sockets[0]);
        return nullptr;
    }
    std::unique_ptr<EngineProcess> engine(new EngineProcess(sockets[0], child));
    char isReady = 0;
    if (!readAll(engine->m_socket, &isReady, 1) || isReady != 1)
        return nullptr;
    return engine;
}

EngineProcess::EngineProcess(int socket, int processId) : m_socket(socket), m_processId(processId)
{
}

EngineProcess::~EngineProcess()
{
    ::close(m_socket);
    ::kill(m_processId, SIGKILL);
    while (::waitpid(m_processId, nullptr, 0) < 0 && errno == EINTR) { }
}

std::optional<std::vector<EngineSymbol>> EngineProcess::read(const LineStrip &strip)
{
    std::vector<EngineSymbol> result;
    if (strip.width <= 0 || strip.width > int(widestStrip))
        return result;
    const LineRequest request{std::uint32_t(strip.width)};
    LineReply reply;
    if (!sendAll(m_socket, &request, sizeof(request))
        || !sendAll(m_socket, strip.grey.data(), strip.grey.size())
        || !readAll(m_socket, &reply, sizeof(reply)))
        return std::nullopt;
    std::vector<Symbol> symbols(reply.count);
    if (!readAll(m_socket, symbols.data(), symbols.size() * sizeof(Symbol)))
        return std::nullopt;
    for (const Symbol &symbol : symbols) {
        const QString text = QString::fromUtf8(symbol.text, symbol.length).simplified().remove(' ');
        if (!text.isEmpty())
            result.push_back(
                {text, symbol.left, symbol.right, symbol.confidence, symbol.startsWord != 0});
    }
    return result;
}

} // namespace tovek
