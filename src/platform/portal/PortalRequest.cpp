// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PortalRequest.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QPointer>

#include <utility>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto lateLimit = 60s;
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");

QString reasonOf(const QDBusError &error)
{
    switch (error.type()) {
    case QDBusError::ServiceUnknown:
    case QDBusError::Disconnected:
        return QStringLiteral("no desktop portal runs here");
    case QDBusError::UnknownMethod:
    case QDBusError::UnknownInterface:
    case QDBusError::UnknownObject:
        return QStringLiteral("the portal of this desktop cannot do it");
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return QStringLiteral("the desktop portal did not answer");
    default:
        return QStringLiteral("the desktop portal said: %1").arg(error.message());
    }
}

} // namespace

QString PortalAnswer::reason() const
{
    switch (kind) {
    case Kind::given:
        return {};
    case Kind::cancelled:
        return QStringLiteral("it was cancelled");
    case Kind::refused:
        return QStringLiteral("the desktop refused it");
    case Kind::silent:
        return QStringLiteral("the desktop did not answer in time");
    case Kind::failed:
        break;
    }
    return error;
}

PortalRequest::PortalRequest(PortalBus &bus, const QString &token) : m_connection(bus.connection())
{
    QString sender = m_connection.baseService().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    m_path = Portal::path + QStringLiteral("/request/%1/%2").arg(sender, token);
    connect(&bus, &PortalBus::portalLost, this,
            [this] { fail(QStringLiteral("the desktop portal ended")); });
    m_limit.setSingleShot(true);
    m_limit.callOnTimeout([this] { giveUp(); });
}

PortalRequest *PortalRequest::send(PortalBus &bus, QDBusMessage call, QVariantMap options,
                                   std::chrono::milliseconds limit, QObject *context,
                                   Answered answered)
{
    const QString token = bus.nextToken();
    auto *request = new PortalRequest(bus, token); // deletes itself
    request->m_answered = std::move(answered);
    request->m_context = context;
    request->m_limit.start(limit);
    options.insert(QStringLiteral("handle_token"), token);
    call << options;
    // Before the call: the answer may be as quick.
    request->m_connection.connect(QString(), request->m_path, requestInterface,
                                  QStringLiteral("Response"), request,
                                  SLOT(respond(uint, QVariantMap)));
    auto *watcher = new QDBusPendingCallWatcher(request->m_connection.asyncCall(call), request);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, request, [request, watcher] {
        if (watcher->isError())
            request->fail(reasonOf(watcher->error()));
    });
    return request;
}

void PortalRequest::respond(uint code, const QVariantMap &results)
{
    if (!m_answered) {
        // After the limit. A second answer to the same question finds nobody.
        if (code == 0 && onLate)
            std::exchange(onLate, nullptr)(results);
        deleteLater();
        return;
    }
    const auto kind = code == 0 ? PortalAnswer::Kind::given
        : code == 1             ? PortalAnswer::Kind::cancelled
                                : PortalAnswer::Kind::refused;
    onLate = nullptr;
    finish({kind, results, {}});
    deleteLater();
}

void PortalRequest::fail(const QString &reason)
{
    finish({PortalAnswer::Kind::failed, {}, reason});
    deleteLater();
}

void PortalRequest::finish(const PortalAnswer &answer)
{
    const Answered answered = std::exchange(m_answered, nullptr);
    if (answered && m_context)
        answered(answer);
}

void PortalRequest::giveUp()
{
    if (!m_answered)
        return deleteLater();
    // What it shows the user meanwhile shall go as well.
    m_connection.asyncCall(QDBusMessage::createMethodCall(Portal::service, m_path, requestInterface,
                                                          QStringLiteral("Close")));
    m_limit.start(lateLimit);
    finish({PortalAnswer::Kind::silent, {}, {}});
}

} // namespace tovek
