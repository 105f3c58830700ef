// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/Program.h"

#include "support/Wait.h"

#include <QFile>

#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace tovek {

Program::Program(const QString &log) : m_log(log) { }

Program::~Program()
{
    stop();
}

bool Program::start(const QString &path, const QStringList &arguments,
                    const QProcessEnvironment &environment)
{
    m_process.setProcessEnvironment(environment);
    const QString null = QProcess::nullDevice();
    m_process.setStandardOutputFile(m_log.isEmpty() ? null : m_log + QStringLiteral(".out"));
    m_process.setStandardErrorFile(m_log.isEmpty() ? null : m_log + QStringLiteral(".err"));
    const pid_t parent = getpid();
    m_process.setChildProcessModifier([descriptor = m_passedOn, parent] {
        if (descriptor >= 0)
            fcntl(descriptor, F_SETFD, 0);
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != parent)
            _exit(1);
    });
    m_process.start(path, arguments);
    return m_process.waitForStarted();
}

bool Program::isRunning() const
{
    auto &process = const_cast<QProcess &>(m_process);
    return process.state() != QProcess::NotRunning && !process.waitForFinished(0);
}

QStringList Program::linesOf(const QString &suffix) const
{
    QFile file(m_log + suffix);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    lines.removeLast();
    return lines;
}

bool Program::waitForLine(const QString &text, std::chrono::milliseconds deadline,
                          qsizetype first) const
{
    return waitUntil(
        [&] {
            const QStringList seen = lines().mid(first);
            return std::any_of(seen.begin(), seen.end(),
                               [&](const QString &line) { return line.startsWith(text); });
        },
        deadline);
}

void Program::writeLine(const QByteArray &line)
{
    m_process.write(line + '\n');
    m_process.waitForBytesWritten();
}

std::optional<int> Program::waitForExit(std::chrono::milliseconds deadline)
{
    if (m_process.state() != QProcess::NotRunning
        && !m_process.waitForFinished(int(deadline.count())))
        return std::nullopt;
    return m_process.exitStatus() == QProcess::CrashExit ? 128 + m_process.exitCode()
                                                         : m_process.exitCode();
}

int Program::stop()
{
    if (isRunning()) {
        m_process.terminate();
        if (!waitForExit(std::chrono::seconds(5)))
            m_process.kill();
    }
    return waitForExit().value_or(-1);
}

} // namespace tovek
