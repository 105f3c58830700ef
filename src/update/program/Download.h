// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "update/program/Refusal.h"

#include <QObject>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>

class QNetworkAccessManager;
class QNetworkReply;
class QNetworkRequest;

namespace tovek {

/// One file fetched over HTTPS. It starts when it is made and ends with this object; each of the
/// two last callbacks may destroy it. Says nothing of the machine but the program's name.
class Download : public QObject
{
    Q_OBJECT

public:
    struct Plan
    {
        QUrl url; ///< HTTPS; and so are all addresses that it may lead to
        qint64 longest = 0; ///< bytes; more are refused as soon as they come
        std::chrono::milliseconds silence; ///< the longest time without a byte
        std::chrono::milliseconds whole; ///< the longest time for all of it; 0: any
    };

    Download(QNetworkAccessManager &network, const Plan &plan);
    ~Download() override;

    /// False: nothing more is wanted. That ends the download without another call.
    std::function<bool(const QByteArray &bytes)> onData;
    std::function<void()> onDone;
    std::function<void(Refusal refusal, const QString &detail)> onFailed;

private:
    static QNetworkRequest requestFor(const Plan &plan);
    void read();
    void finished();
    void stop();
    std::optional<Refusal> refusal() const;
    void fail(Refusal refusal, const QString &detail = {});

    struct LaterDelete
    {
        void operator()(QNetworkReply *reply) const;
    };

    Plan m_plan;
    std::unique_ptr<QNetworkReply, LaterDelete> m_reply; ///< null when it is over
    QTimer m_silence;
    QTimer m_whole;
    qint64 m_received = 0;
};

} // namespace tovek
