// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/XServer.h"

#include "support/XConnection.h"

#include <QElapsedTimer>
#include <QStandardPaths>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace tovek {

namespace {

/// True when the server was built to begin with the keyboard that is wanted; to compile that once
/// more is a third of its start.
bool hasKeyboard(const QString &displayName)
{
    const XConnection connection(displayName);
    return connection.isOpen()
        && connection.property(connection.root(), connection.atom("_XKB_RULES_NAMES"))
               .startsWith(QByteArray::fromRawData("evdev\0pc105\0us\0\0", 17));
}

} // namespace

XServer::XServer(QSize size, int depth) : m_size(size), m_depth(depth) { }

QString XServer::missing()
{
    for (const char *name : {"Xvfb", "setxkbmap"}) {
        if (QStandardPaths::findExecutable(QLatin1String(name)).isEmpty())
            return QStringLiteral("%1 is not installed").arg(QLatin1String(name));
    }
    return {};
}

bool XServer::start()
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        m_error = QStringLiteral("no pipe");
        return false;
    }
    m_server.passOn(ends[1]);
    // Without -noreset the server forgets monitors and properties when its last client leaves.
    const bool isStarted = m_server.start(
        QStringLiteral("Xvfb"),
        {QStringLiteral("-displayfd"), QString::number(ends[1]), QStringLiteral("-screen"),
         QStringLiteral("0"),
         QStringLiteral("%1x%2x%3").arg(m_size.width()).arg(m_size.height()).arg(m_depth),
         QStringLiteral("-noreset"), QStringLiteral("-nolisten"), QStringLiteral("tcp"),
         // Which would load a compiler for shaders, and nobody here draws with them.
         QStringLiteral("-extension"), QStringLiteral("GLX")},
        QProcessEnvironment::systemEnvironment());
    close(ends[1]);
    const bool isReady = isStarted && readDisplayName(ends[0]);
    close(ends[0]);
    if (!isReady) {
        m_error = QStringLiteral("Xvfb did not start");
        return false;
    }
    return hasKeyboard(m_displayName) || setKeyboard();
}

bool XServer::readDisplayName(int descriptor)
{
    QByteArray number;
    QElapsedTimer timer;
    timer.start();
    // The number and the line feed may come in two pieces.
    while (!number.endsWith('\n') && timer.elapsed() < 20000) {
        pollfd entry{descriptor, POLLIN, 0};
        char buffer[16];
        if (poll(&entry, 1, 1000) < 1)
            continue;
        const ssize_t count = read(descriptor, buffer, sizeof buffer);
        if (count <= 0)
            return false;
        number.append(buffer, count);
    }
    m_displayName = QLatin1Char(':') + QString::fromLatin1(number.trimmed());
    return number.endsWith('\n');
}

bool XServer::setKeyboard()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), m_displayName);
    Program setter;
    const bool isStarted =
        setter.start(QStringLiteral("setxkbmap"),
                     {QStringLiteral("-rules"), QStringLiteral("evdev"), QStringLiteral("-model"),
                      QStringLiteral("pc105"), QStringLiteral("-layout"), QStringLiteral("us")},
                     environment);
    if (isStarted && setter.waitForExit() == 0)
        return true;
    m_error = QStringLiteral("setxkbmap failed");
    return false;
}

void XServer::kill()
{
    if (m_server.isRunning())
        ::kill(pid_t(m_server.pid()), SIGKILL);
    m_server.waitForExit();
}

} // namespace tovek
