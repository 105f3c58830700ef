// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Log.h"

#include <QMutex>
#include <QtGlobal>

#include <atomic>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tovek {

namespace {

std::atomic<bool> isOnStandardError = false;

/// One of the standard outputs. Its own descriptor cannot be made non-blocking, for others share
/// it: what the shell that started the program is given at its terminal comes from there too. A
/// pipe or terminal is therefore opened anew.
class Output
{
public:
    constexpr explicit Output(int descriptor) : m_shared(descriptor) { }

    void write(QByteArray line)
    {
        struct stat status
        {
        };
        if (fstat(m_shared, &status) != 0)
            return;
        if (status.st_ino != m_inode || status.st_dev != m_device)
            open(status);
        if (S_ISSOCK(status.st_mode)) {
            send(m_shared, line.constData(), size_t(line.size()), MSG_DONTWAIT | MSG_NOSIGNAL);
            return;
        }
        // Pipes take this much whole or not at all.
        if (m_own >= 0 && line.size() > PIPE_BUF)
            line = line.left(PIPE_BUF - 4) + "...\n";
        writeAll(m_own >= 0 ? m_own : m_shared, line);
    }

private:
    void open(const struct stat &status)
    {
        if (m_own >= 0)
            close(m_own);
        m_own = -1;
        m_inode = status.st_ino;
        m_device = status.st_dev;
        if (!S_ISFIFO(status.st_mode) && !S_ISCHR(status.st_mode))
            return;
        const QByteArray name = "/proc/self/fd/" + QByteArray::number(m_shared);
        m_own = ::open(name.constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    }

    static void writeAll(int descriptor, const QByteArray &line)
    {
        for (qsizetype done = 0; done < line.size();) {
            const ssize_t written =
                ::write(descriptor, line.constData() + done, size_t(line.size() - done));
            if (written <= 0 && errno != EINTR)
                return; // nobody could be told
            done += std::max<ssize_t>(written, 0);
        }
    }

    int m_shared;
    int m_own = -1; ///< the same, never waiting; -1 where that is not needed
    ino_t m_inode = 0;
    dev_t m_device = 0;
};

// Without destructors: lines are written until the very end.
constinit QBasicMutex mutex;
constinit Output standardOutput(STDOUT_FILENO);
constinit Output standardError(STDERR_FILENO);

void write(Output &output, const QByteArray &line)
{
    const QMutexLocker lock(&mutex);
    output.write(line);
}

void toolkitMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const QString message = qFormatLogMessage(type, context, text);
    if (!message.isNull())
        write(standardError, message.toLocal8Bit() + '\n');
}

} // namespace

void logLine(const QString &text)
{
    QByteArray line = text.toUtf8();
    line.replace('\n', ' ');
    line.append('\n');
    write(isOnStandardError ? standardError : standardOutput, line);
}

void logToStandardError()
{
    isOnStandardError = true;
}

void survivePeopleWhoDoNotRead()
{
    std::signal(SIGPIPE, SIG_IGN);
    qInstallMessageHandler(&toolkitMessage);
}

} // namespace tovek
