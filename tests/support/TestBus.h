// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace tovek {

/// A session bus of a test's own, with no services but those that the test brings. The process's
/// environment names it from `start` on.
class TestBus
{
public:
    ~TestBus()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

    static bool isInstalled()
    {
        return !QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty();
    }

    /// With `names`, nobody may own others.
    [[nodiscard]] bool start(const QByteArrayList &names = {"*"})
    {
        QFile config(m_folder.filePath(QStringLiteral("bus.conf")));
        if (!config.open(QIODevice::WriteOnly))
            return false;
        config.write("<busconfig><type>session</type><listen>unix:path=" + m_folder.path().toUtf8()
                     + "/bus</listen><auth>EXTERNAL</auth><policy context=\"default\">"
                       "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/>"
                       "<deny own=\"*\"/>");
        for (const QByteArray &name : names)
            config.write("<allow own=\"" + name + "\"/>");
        config.write("</policy></busconfig>");
        config.close();
        m_daemon.start(QStringLiteral("dbus-daemon"),
                       {QStringLiteral("--config-file=") + config.fileName(),
                        QStringLiteral("--nofork"), QStringLiteral("--print-address")});
        if (!m_daemon.waitForReadyRead(5000))
            return false;
        m_address = QString::fromUtf8(m_daemon.readLine().trimmed());
        return qputenv("DBUS_SESSION_BUS_ADDRESS", m_address.toUtf8());
    }
    const QString &address() const { return m_address; }

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
    QString m_address;
};

} // namespace tovek
