// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/program/Download.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>

namespace tovek {

namespace {

constexpr qint64 readBuffer = 256 * 1024;
constexpr int mostRedirects = 5;
constexpr int okStatus = 200;
constexpr int firstErrorStatus = 400;

int statusOf(const QNetworkReply &reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

} // namespace

Download::Download(QNetworkAccessManager &network, const Plan &plan)
    : m_plan(plan)
    , m_reply(network.get(requestFor(plan)))
{
    // What nobody has read yet is held back on the other side.
    m_reply->setReadBufferSize(readBuffer);
    connect(m_reply.get(), &QNetworkReply::readyRead, this, &Download::read);
    connect(m_reply.get(), &QNetworkReply::finished, this, &Download::finished);
    for (QTimer *timer : {&m_silence, &m_whole}) {
        timer->setSingleShot(true);
        connect(timer, &QTimer::timeout, this, [this] { fail(Refusal::silent); });
    }
    m_silence.start(plan.silence);
    if (plan.whole.count() > 0)
        m_whole.start(plan.whole);
}

Download::~Download() = default;

void Download::LaterDelete::operator()(QNetworkReply *reply) const
{
    // This may be inside one of its own signals.
    reply->disconnect();
    reply->abort();
    reply->deleteLater();
}

QNetworkRequest Download::requestFor(const Plan &plan)
{
    QNetworkRequest request(plan.url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(mostRedirects);
    for (const auto attribute :
         {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute,
          QNetworkRequest::AuthenticationReuseAttribute})
        request.setAttribute(attribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setRawHeader("User-Agent", "Tovek");
    request.setRawHeader("Accept-Language", "en");
    // Nothing is unpacked on the way: a few bytes could become very many.
    request.setRawHeader("Accept-Encoding", "identity");
    return request;
}

void Download::read()
{
    if (!m_reply)
        return;
    const int status = statusOf(*m_reply);
    const QByteArray bytes = m_reply->readAll();
    m_received += bytes.size();
    // The page that goes with another answer is for nobody, and may have no end.
    if (status != okStatus && m_received > readBuffer)
        return fail(Refusal::badAnswer, QString::number(status));
    if (status != okStatus)
        return;
    m_silence.start();
    if (m_received > m_plan.longest)
        return fail(Refusal::tooLong);
    if (onData && !onData(bytes))
        stop();
}

std::optional<Refusal> Download::refusal() const
{
    const QNetworkReply::NetworkError error = m_reply->error();
    if (error == QNetworkReply::InsecureRedirectError
        || m_reply->url().scheme() != QLatin1String("https"))
        return Refusal::insecure;
    if (error == QNetworkReply::RemoteHostClosedError && statusOf(*m_reply) == okStatus)
        return Refusal::cutOff;
    if (statusOf(*m_reply) >= firstErrorStatus)
        return Refusal::badAnswer;
    if (error != QNetworkReply::NoError)
        return Refusal::unreachable;
    if (statusOf(*m_reply) != okStatus)
        return Refusal::badAnswer;
    const QVariant announced = m_reply->header(QNetworkRequest::ContentLengthHeader);
    if (announced.isValid() && announced.toLongLong() != m_received)
        return Refusal::cutOff;
    return std::nullopt;
}

void Download::finished()
{
    read();
    if (!m_reply)
        return;
    if (const auto reason = refusal()) {
        const QString detail = *reason == Refusal::badAnswer ? QString::number(statusOf(*m_reply))
                                                             : m_reply->errorString();
        return fail(*reason, detail);
    }
    stop();
    if (onDone)
        onDone();
}

void Download::stop()
{
    m_reply.reset();
    m_silence.stop();
    m_whole.stop();
}

void Download::fail(Refusal refusal, const QString &detail)
{
    stop();
    if (onFailed)
        onFailed(refusal, detail);
}

} // namespace tovek
