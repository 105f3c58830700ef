// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/clipboard/X11Clipboard.h"
#include "support/SelectionReader.h"

#include <QDir>
#include <QProcess>
#include <QPromise>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

namespace tovek {

/// A real X server with our clipboard on it, and the programs that hold it for us.
class X11ClipboardFixture
{
protected:
    void startServer()
    {
        const QString program = QStandardPaths::findExecutable(QStringLiteral("Xvfb"));
        if (program.isEmpty())
            QSKIP("Xvfb is missing");
        m_server.setProgram(program);
        m_server.setArguments(
            {"-displayfd", "1", "-screen", "0", "640x480x24", "-noreset", "-nolisten", "tcp"});
        m_server.start();
        QVERIFY(m_server.waitForReadyRead(10000));
        m_display = ":" + m_server.readAllStandardOutput().trimmed();
        QVERIFY(QFile::exists(holder()));
    }
    void stopServer()
    {
        m_server.terminate();
        m_server.waitForFinished(5000);
    }
    void endHolders()
    {
        if (m_display.isEmpty())
            return;
        SelectionReader(m_display).take();
        QTRY_VERIFY(holderProcesses().isEmpty());
    }
    std::unique_ptr<X11Clipboard> make() const
    {
        return X11Clipboard::create(holder(), QString::fromLatin1(m_display));
    }
    static QString holder()
    {
        return QFileInfo(qEnvironmentVariable("TOVEK_PROGRAM")).path() + "/tovek-clipboard";
    }
    static QByteArray noise(int size)
    {
        QByteArray bytes((size + 3) / 4 * 4, Qt::Uninitialized);
        QRandomGenerator(quint32(size))
            .fillRange(reinterpret_cast<quint32 *>(bytes.data()), bytes.size() / 4);
        bytes.truncate(size);
        return bytes;
    }
    static QFuture<QByteArray> ready(const QByteArray &bytes)
    {
        QPromise<QByteArray> promise;
        promise.start();
        promise.addResult(bytes);
        promise.finish();
        return promise.future();
    }
    /// Running holders of this test's display.
    QStringList holderProcesses() const
    {
        QStringList found;
        const auto entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
        for (const QString &entry : entries) {
            QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(entry));
            if (!commandLine.open(QIODevice::ReadOnly))
                continue;
            const auto arguments = commandLine.readAll().split('\0');
            if (arguments.size() > 2 && arguments[0].endsWith("/tovek-clipboard")
                && arguments[1] == m_display)
                found << entry;
        }
        return found;
    }

    QProcess m_server;
    QByteArray m_display;
};

} // namespace tovek
