// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/QuitSignals.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace tovek {

namespace {

constexpr int quitSignals[] = {SIGTERM, SIGINT, SIGHUP};

int writeEnd = -1; ///< a signal handler can know only what is global

/// All but what was switched off.
void setHandlers(void (*handler)(int))
{
    for (const int signal : quitSignals) {
        struct sigaction present
        {
        };
        sigaction(signal, nullptr, &present);
        if (present.sa_handler == SIG_IGN)
            continue;
        struct sigaction action
        {
        };
        action.sa_handler = handler;
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
}

/// May only call what is safe at any instant.
void handle(int)
{
    const int before = errno;
    setHandlers(SIG_DFL);
    const char byte = 0;
    // Nothing can be done about a pipe that does not take one byte.
    static_cast<void>(!::write(writeEnd, &byte, sizeof byte));
    errno = before;
}

/// -1 when there are no descriptors left.
int openPipe()
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return -1;
    writeEnd = ends[1];
    return ends[0];
}

} // namespace

QuitSignals::QuitSignals(std::function<void()> onQuit)
    : m_readEnd(openPipe())
    , m_notifier(QSocketNotifier::Read)
{
    if (m_readEnd < 0)
        return;
    m_notifier.setSocket(m_readEnd);
    m_notifier.setEnabled(true);
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier,
                     [this, onQuit = std::move(onQuit)] {
                         m_notifier.setEnabled(false);
                         onQuit();
                     });
    setHandlers(&handle);
}

QuitSignals::~QuitSignals()
{
    if (m_readEnd < 0)
        return;
    setHandlers(SIG_DFL);
    m_notifier.setEnabled(false);
    close(m_readEnd);
    close(writeEnd);
}

} // namespace tovek
