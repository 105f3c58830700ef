// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/ocr/EngineProcess.h"

#include "platform/linux/ocr/LineAnswer.h"
#include "platform/linux/ocr/RecognitionModels.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>

namespace tovek {

namespace {

using namespace LineProtocol;

static_assert(LineStrip::height == stripHeight);
static_assert(int(LineEngine::Models::english) == english
              && int(LineEngine::Models::native) == native);

/// Of a line, in columns, to tell its script.
constexpr int enoughOfALine = 3000;
/// By the engine's own measure, which has no upper end. Guesses at what is no text come to less.
constexpr double surelyThisScript = 0.6;

std::atomic<int> hung = 0;

/// The sockets of exchanges that are under way, with the time of their beginning.
struct UnderWay
{
    std::mutex mutex;
    std::map<int, QElapsedTimer> sockets;
};

UnderWay &underWay()
{
    static auto *all = new UnderWay; // never destroyed: threads may be left behind at the end
    return *all;
}

/// One exchange with the process, which must be over by a deadline.
class Exchange
{
public:
    Exchange(int socket, std::chrono::milliseconds patience)
        : m_socket(socket)
        , m_deadline(patience)
    {
        const std::lock_guard lock(underWay().mutex);
        underWay().sockets[socket].start();
    }
    ~Exchange()
    {
        const std::lock_guard lock(underWay().mutex);
        underWay().sockets.erase(m_socket);
    }
    Exchange(const Exchange &) = delete;
    Exchange &operator=(const Exchange &) = delete;
    bool send(const void *from, std::size_t size)
    {
        const auto *at = static_cast<const char *>(from);
        return inPieces(POLLOUT, size, [&](std::size_t done) {
            return ::send(m_socket, at + done, size - done, MSG_NOSIGNAL | MSG_DONTWAIT);
        });
    }
    bool receive(void *to, std::size_t size)
    {
        auto *at = static_cast<char *>(to);
        return inPieces(POLLIN, size, [&](std::size_t done) {
            return ::recv(m_socket, at + done, size - done, MSG_DONTWAIT);
        });
    }

    /// What the process says to `grey`; nothing when it broke down or hangs.
    std::optional<std::vector<Symbol>> ask(const LineRequest &request,
                                           const std::vector<std::uint8_t> &grey)
    {
        LineReply reply;
        if (!send(&request, sizeof(request)) || !send(grey.data(), grey.size())
            || !receive(&reply, sizeof(reply)))
            return std::nullopt;
        // What came is no answer, whatever it is: memory for so much need not be there.
        if (reply.count > widestStrip)
            return std::nullopt;
        std::vector<Symbol> symbols(reply.count);
        if (!receive(symbols.data(), symbols.size() * sizeof(Symbol)))
            return std::nullopt;
        return symbols;
    }

private:
    template <typename Transfer>
    bool inPieces(short event, std::size_t size, Transfer transfer)
    {
        for (std::size_t done = 0; done < size;) {
            pollfd waited{m_socket, event, 0};
            const int ready = ::poll(&waited, 1, int(m_deadline.remainingTime()));
            if (ready == 0) {
                ++hung;
                return false;
            }
            const ssize_t count = ready > 0 ? transfer(done) : -1;
            if (count < 0 && (errno == EINTR || errno == EAGAIN))
                continue;
            if (count <= 0)
                return false;
            done += std::size_t(count);
        }
        return true;
    }

    int m_socket;
    QDeadlineTimer m_deadline;
};

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

std::unique_ptr<EngineProcess> EngineProcess::create(const EngineSetup &setup)
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
    std::unique_ptr<EngineProcess> engine(new EngineProcess(sockets[0], child, setup));
    char isReady = 0;
    if (!Exchange(sockets[0], setup.patience).receive(&isReady, 1) || isReady != 1)
        return nullptr;
    return engine;
}

EngineProcess::EngineProcess(int socket, int processId, const EngineSetup &setup)
    : m_socket(socket)
    , m_processId(processId)
    , m_patience(setup.patience)
    , m_readsByWords(readByWords(QString::fromLatin1(setup.languages).split('+')))
{
}

EngineProcess::~EngineProcess()
{
    ::close(m_socket);
    ::kill(m_processId, SIGKILL);
    while (::waitpid(m_processId, nullptr, 0) < 0 && errno == EINTR) { }
}

void EngineProcess::giveUp(std::chrono::milliseconds olderThan)
{
    const std::lock_guard lock(underWay().mutex);
    for (const auto &[socket, begun] : underWay().sockets) {
        if (begun.elapsed() >= olderThan.count())
            ::shutdown(socket, SHUT_RDWR);
    }
}

int EngineProcess::hangs()
{
    return hung;
}

std::optional<std::vector<EngineSymbol>> EngineProcess::read(const LineStrip &strip, Models models)
{
    if (strip.width <= 0 || strip.width > int(widestStrip))
        return std::vector<EngineSymbol>();
    Exchange exchange(m_socket, m_patience);
    const auto symbols =
        exchange.ask({std::uint32_t(strip.width), std::uint32_t(models)}, strip.grey);
    return symbols ? lineAnswer(*symbols, strip.width) : std::nullopt;
}

QString EngineProcess::scriptOf(const std::vector<LineStrip> &lines)
{
    const std::size_t count = std::min(lines.size(), std::size_t(mostLines));
    int width = 0;
    for (std::size_t i = 0; i < count; ++i)
        width = std::max(width, std::min(lines[i].width, enoughOfALine));
    if (width <= 0)
        return {};
    constexpr std::uint8_t paper = 255;
    std::vector<std::uint8_t> grey(std::size_t(width) * stripHeight * count, paper);
    for (std::size_t i = 0; i < count; ++i) {
        const LineStrip &line = lines[i];
        for (std::size_t row = 0; row < stripHeight; ++row) {
            const auto from = line.grey.begin() + std::ptrdiff_t(row * std::size_t(line.width));
            std::copy_n(from, std::min(line.width, width),
                        grey.begin()
                            + std::ptrdiff_t((i * stripHeight + row) * std::size_t(width)));
        }
    }
    Exchange exchange(m_socket, m_patience);
    const auto answer =
        exchange.ask({std::uint32_t(width), LineProtocol::all, std::uint32_t(count)}, grey);
    const auto script = answer ? lineAnswer(*answer, width) : std::nullopt;
    if (!script || script->empty() || script->front().confidence < surelyThisScript)
        return {};
    return script->front().text;
}

} // namespace tovek
