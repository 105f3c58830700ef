// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/UpdateServer.h"

#include <QBuffer>
#include <QFile>
#include <QLocale>
#include <QProcess>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslSocket>
#include <QTimeZone>

namespace tovek {

namespace {

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

bool UpdateServer::start()
{
    if (!makeCertificate())
        return false;
    m_keys = UpdateSignature::makeKeyPair();
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(QSslCertificate(readAll(certificateFile())));
    configuration.setPrivateKey(
        QSslKey(readAll(m_folder.filePath(QStringLiteral("key.pem"))), QSsl::Ec));
    m_server.setSslConfiguration(configuration);
    connect(&m_server, &QSslServer::pendingConnectionAvailable, this, [this] {
        while (auto *socket = qobject_cast<QSslSocket *>(m_server.nextPendingConnection()))
            serve(*socket);
    });
    connect(&m_server, &QSslServer::startedEncryptionHandshake, this, [this] { ++m_connections; });
    return m_server.listen(QHostAddress::LocalHost);
}

bool UpdateServer::makeCertificate()
{
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"),
                  {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                   "-nodes", "-keyout", m_folder.filePath(QStringLiteral("key.pem")), "-out",
                   certificateFile(), "-days", "2", "-subj", "/CN=Tovek test", "-addext",
                   "subjectAltName=IP:127.0.0.1"});
    if (openssl.waitForFinished() && openssl.exitCode() == 0)
        return true;
    m_error = QStringLiteral("openssl: ") + openssl.errorString()
        + QString::fromUtf8(openssl.readAllStandardError());
    return false;
}

QUrl UpdateServer::url(const QString &path) const
{
    return QUrl(
        QStringLiteral("https://127.0.0.1:%1%2").arg(QString::number(m_server.serverPort()), path));
}

QDateTime UpdateServer::defaultDate()
{
    return QDateTime(QDate(2026, 3, 7), QTime(14, 0), QTimeZone::utc());
}

SignedEntry UpdateServer::entryOf(const PublishedPackage &package, const QDateTime &date)
{
    QBuffer buffer;
    buffer.setData(package.bytes);
    buffer.open(QIODevice::ReadOnly);
    return {package.version,
            packageKind(QString::fromLatin1(package.kind)).value_or(PackageKind::appImage),
            package.architecture,
            package.bytes.size(),
            UpdateSignature::digest(buffer).value_or(QByteArray()),
            QString::fromLatin1(package.minimumSystem),
            date};
}

QByteArray UpdateServer::signatureOf(const PublishedPackage &package, const QDateTime &date) const
{
    return UpdateSignature::sign(m_keys.secretKey, entryOf(package, date));
}

void UpdateServer::publish(const PublishedPackage &package, const QDateTime &date)
{
    publishAs(package, signatureOf(package, date), date);
}

void UpdateServer::publishAs(const PublishedPackage &package, const QByteArray &signature,
                             const QDateTime &date)
{
    const SignedEntry entry = entryOf(package, date);
    const QByteArray system = package.minimumSystem.isEmpty()
        ? QByteArray()
        : "<minimumSystemVersion>" + package.minimumSystem + "</minimumSystemVersion>";
    const QByteArray day =
        QLocale::c().toString(date.toUTC(), QStringLiteral("ddd, dd MMM yyyy HH:mm:ss")).toUtf8();
    const QByteArray xml = "<rss version=\"2.0\"><channel><lastBuildDate>" + day
        + " +0000</lastBuildDate><item><version>" + package.version.toUtf8()
        + "</version><description>What is new:\n- It is faster\n- It is finer</description>"
        + system + "<enclosure kind=\"" + package.kind + "\" url=\""
        + url(packagePath()).toString().toUtf8() + "\" length=\"" + QByteArray::number(entry.length)
        + "\" architecture=\"" + entry.architecture.toUtf8() + "\" digest=\""
        + entry.digest.toBase64() + "\" signature=\"" + signature.toBase64()
        + "\"/></item></channel></rss>";
    answer(QStringLiteral("/feed.xml"), {xml});
    answer(packagePath(), {package.bytes});
}

void UpdateServer::serve(QSslSocket &socket)
{
    connect(&socket, &QSslSocket::disconnected, &socket, &QObject::deleteLater);
    connect(&socket, &QSslSocket::readyRead, this, [this, &socket] {
        const QByteArray head = socket.peek(64 * 1024);
        if (!head.contains("\r\n\r\n"))
            return;
        socket.readAll();
        m_lastHead = head;
        const QByteArray line = head.left(head.indexOf("\r\n"));
        m_requests.append(QString::fromUtf8(line));
        reply(socket, QString::fromUtf8(line.split(' ').value(1)));
    });
}

void UpdateServer::reply(QSslSocket &socket, const QString &path)
{
    using End = ServerAnswer::End;
    const ServerAnswer answer = m_answers.value(path, {"not here", 404});
    if (answer.end == End::never)
        return;
    QByteArray head = "HTTP/1.1 " + QByteArray::number(answer.status) + " Answer\r\n";
    if (!answer.location.isEmpty())
        head += "Location: " + answer.location + "\r\n";
    const qint64 length = answer.announced < 0 ? answer.body.size() : answer.announced;
    if (answer.end != End::endless)
        head += "Content-Length: " + QByteArray::number(length) + "\r\n";
    socket.write(head + "Connection: close\r\n\r\n" + answer.body);
    if (answer.end != End::endless) {
        if (answer.end != End::stuck)
            socket.disconnectFromHost();
        return;
    }
    connect(&socket, &QSslSocket::encryptedBytesWritten, &socket, [&socket] {
        if (socket.bytesToWrite() + socket.encryptedBytesToWrite() < 64 * 1024)
            socket.write(QByteArray(64 * 1024, ' '));
    });
    socket.write(QByteArray(64 * 1024, ' '));
}

} // namespace tovek
