// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "update/UpdateSignature.h"

#include <QDateTime>
#include <QMap>
#include <QSslServer>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QUrl>

class QSslSocket;

namespace tovek {

/// What the server does with one path.
struct ServerAnswer
{
    enum class End { whole, cutOff, endless, stuck, never };

    QByteArray body;
    int status = 200;
    QByteArray location = {}; ///< of a redirect
    End end = End::whole;
    qint64 announced = -1; ///< length in the head; -1: that of the body
};

/// A package as it is published.
struct PublishedPackage
{
    QString version;
    QByteArray bytes;
    QByteArray kind = "appimage";
    QByteArray minimumSystem = {}; ///< empty: any
    QString architecture = QSysInfo::currentCpuArchitecture();
};

/// A server of updates on this machine with a certificate and keys of its own, made when it
/// starts. It answers each request from what it was told.
class UpdateServer : public QObject
{
public:
    /// False when openssl is not there to make the certificate.
    [[nodiscard]] bool start();
    QString error() const { return m_error; }

    QUrl url(const QString &path) const;
    QUrl feedUrl() const { return url(QStringLiteral("/feed.xml")); }
    QString certificateFile() const { return m_folder.filePath(QStringLiteral("cert.pem")); }
    const UpdateSignature::KeyPair &keys() const { return m_keys; }

    void answer(const QString &path, const ServerAnswer &answer) { m_answers[path] = answer; }
    QByteArray body(const QString &path) const { return m_answers.value(path).body; }
    /// Offers the package, signed, in a feed of that date.
    void publish(const PublishedPackage &package, const QDateTime &date = defaultDate());
    /// As `publish`, with this signature in the feed.
    void publishAs(const PublishedPackage &package, const QByteArray &signature,
                   const QDateTime &date = defaultDate());
    QByteArray signatureOf(const PublishedPackage &package,
                           const QDateTime &date = defaultDate()) const;
    static SignedEntry entryOf(const PublishedPackage &package, const QDateTime &date);
    static QDateTime defaultDate();
    static QString packagePath() { return QStringLiteral("/package"); }

    /// The first lines of the requests so far.
    QStringList requests() const { return m_requests; }
    QByteArray lastHead() const { return m_lastHead; }
    int connections() const { return m_connections; }

private:
    bool makeCertificate();
    void serve(QSslSocket &socket);
    void reply(QSslSocket &socket, const QString &path);

    QTemporaryDir m_folder;
    QSslServer m_server;
    UpdateSignature::KeyPair m_keys;
    QMap<QString, ServerAnswer> m_answers;
    QStringList m_requests;
    QByteArray m_lastHead;
    int m_connections = 0;
    QString m_error;
};

} // namespace tovek
