// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "fakes/LogCapture.h"
#include "foundation/UserDefaults.h"
#include "update/FakeUpdateView.h"
#include "update/UpdateServer.h"
#include "update/program/UpdateSession.h"

#include <QDir>
#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>
#include <QSslConfiguration>
#include <QTest>

namespace tovek {

/// What makes a file a program for this machine.
inline QByteArray headOfOwnProgram()
{
    QFile own(QStringLiteral("/proc/self/exe"));
    return own.open(QIODevice::ReadOnly) ? own.read(64) : QByteArray();
}

/// A session with a real server and a view that nobody sees. The program of before lies as an
/// AppImage in a folder of its own; a newer one is published.
class SessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const QString missing = startServer();
        if (!missing.isEmpty())
            QSKIP(qPrintable(missing));
    }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        prepare();
    }
    void cleanup() { finish(); }

protected:
    using Milliseconds = std::chrono::milliseconds;

    inline static const QByteArray oldProgram{"the old program"};
    inline static const QByteArray newProgram =
        headOfOwnProgram() + QByteArray("the new program, ").repeated(50000);

    static ServerAnswer redirect(const QUrl &to) { return {{}, 302, to.toEncoded()}; }
    static PublishedPackage package(const char *version = "2.0")
    {
        return {QString::fromLatin1(version), newProgram};
    }

    /// What keeps the server from running; empty when it runs.
    QString startServer()
    {
        QNetworkProxyFactory::setUseSystemConfiguration(false);
        if (!m_server.start())
            return m_server.error();
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.setCaCertificates(QSslCertificate::fromPath(m_server.certificateFile()));
        QSslConfiguration::setDefaultConfiguration(configuration);
        return {};
    }
    void prepare()
    {
        m_home = std::make_unique<QTemporaryDir>();
        m_view = std::make_unique<FakeUpdateView>();
        m_memory = std::make_unique<UserDefaults>(m_home->filePath(QStringLiteral("memory.json")));
        QVERIFY(QDir(m_home->path()).mkdir(QStringLiteral("programs")));
        write(appImage(), oldProgram);
        QFile::setPermissions(
            appImage(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadGroup);
        m_setup = {};
        m_setup.build = {m_server.feedUrl(), m_server.keys().publicKey, Milliseconds(20000),
                         Milliseconds(20000)};
        m_setup.installation = {PackageKind::appImage, appImage(), programs()};
        m_setup.installedVersion = QStringLiteral("1.0");
        m_setup.systemVersion = QStringLiteral("2.36");
        m_setup.isRequested = true;
        m_log = std::make_unique<LogCapture>();
        m_server.publish(package());
        m_ends = 0;
        begin();
    }
    QByteArray feed()
    {
        m_server.publish(package());
        return m_server.body(QStringLiteral("/feed.xml"));
    }
    void finish()
    {
        m_session.reset();
        const QStringList lines = m_log->lines();
        m_log.reset();
        // The reasons of a failure went where the log goes.
        for (const QString &line : lines) {
            if (QTest::currentTestFailed())
                std::puts(qPrintable(line));
        }
    }
    void begin()
    {
        m_session.reset();
        m_network = std::make_unique<QNetworkAccessManager>();
        m_session = std::make_unique<UpdateSession>(m_setup, *m_view, *m_memory, *m_network);
        m_session->onEnded = [this] { ++m_ends; };
    }
    bool isOffered()
    {
        return QTest::qWaitFor([this] { return m_view->offer.has_value(); }, 20000);
    }
    /// Whether the one line and the window say the words of the refusal, whatever the detail.
    bool isExplained(Refusal refusal)
    {
        const QString words = explain(refusal, QStringLiteral("\x01"));
        const QStringList lines = m_log->lines();
        return m_view->message.startsWith(words.section(QLatin1Char('\x01'), 0, 0))
            && m_view->message.endsWith(words.section(QLatin1Char('\x01'), -1))
            && lines == QStringList{QStringLiteral("Update: ") + m_view->message};
    }
    bool nothingHasChanged() const
    {
        return content(appImage()) == oldProgram
            && files(programs()) == QStringList{QStringLiteral("Tovek.AppImage")};
    }
    QString programs() const { return m_home->filePath(QStringLiteral("programs")); }
    QString appImage() const { return programs() + QStringLiteral("/Tovek.AppImage"); }
    static QStringList files(const QString &folder)
    {
        return QDir(folder).entryList(QDir::Files | QDir::Hidden);
    }
    static QByteArray content(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    UpdateServer m_server;
    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<UserDefaults> m_memory;
    std::unique_ptr<FakeUpdateView> m_view;
    std::unique_ptr<QNetworkAccessManager> m_network;
    std::unique_ptr<LogCapture> m_log;
    UpdateSession::Setup m_setup;
    std::unique_ptr<UpdateSession> m_session;
    int m_ends = 0;
};

} // namespace tovek
