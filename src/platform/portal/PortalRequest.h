// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/portal/PortalBus.h"

#include <QPointer>
#include <QTimer>
#include <QVariantMap>

#include <functional>

namespace tovek {

/// What came of a request.
struct PortalAnswer
{
    enum class Kind {
        given,
        cancelled, ///< by the user
        refused,
        silent, ///< nothing came within the limit
        failed ///< it could not be asked
    };
    Kind kind = Kind::failed;
    QVariantMap results;
    QString error; ///< when it failed: a reason for people

    /// Why there is nothing, for a person to read; empty when there is.
    QString reason() const;
};

/// One question to the portal, which it answers later, once, by a signal. It deletes itself when
/// nothing can come any more. Main thread only.
class PortalRequest : public QObject
{
    Q_OBJECT

public:
    using Answered = std::function<void(const PortalAnswer &)>;

    /// The arguments are those before the options, to which the token is added. `answered` is
    /// called exactly once, from the main loop, unless the context has gone by then.
    static PortalRequest *send(PortalBus &bus, QDBusMessage call, QVariantMap options,
                               std::chrono::milliseconds limit, QObject *context,
                               Answered answered);
    /// Another one, from now on.
    void setLimit(std::chrono::milliseconds limit) { m_limit.start(limit); }
    /// An answer that comes after the limit, within a minute: whoever asked may have to clear up.
    std::function<void(const QVariantMap &results)> onLate;

private Q_SLOTS:
    void respond(uint code, const QVariantMap &results);

private:
    PortalRequest(PortalBus &bus, const QString &token);
    void fail(const QString &reason);
    void finish(const PortalAnswer &answer);
    void giveUp();

    QDBusConnection m_connection;
    QString m_path;
    Answered m_answered; ///< empty once it was called
    QPointer<QObject> m_context;
    QTimer m_limit;
};

} // namespace tovek
