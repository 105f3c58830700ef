// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/StartMessages.h"

#include "foundation/Log.h"

#include <cstdlib>
#include <utility>
#include <vector>

namespace tovek {

namespace {

struct Message
{
    QtMsgType type;
    QByteArray category;
    QString text;
};

/// Held back: if the start fails, only the first of them names the cause.
std::vector<Message> &heldBack()
{
    static std::vector<Message> messages;
    return messages;
}

void handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type != QtFatalMsg) {
        heldBack().push_back({type, context.category, text});
        return;
    }
    const QString cause = heldBack().empty() ? text : heldBack().front().text;
    logLine(QStringLiteral("Failed to start: %1").arg(cause.trimmed()));
    std::_Exit(1);
}

void say(const Message &message)
{
    const QMessageLogger logger(nullptr, 0, nullptr, message.category.constData());
    const QByteArray text = message.text.toUtf8();
    switch (message.type) {
    case QtDebugMsg:
        return logger.debug("%s", text.constData());
    case QtInfoMsg:
        return logger.info("%s", text.constData());
    case QtCriticalMsg:
        return logger.critical("%s", text.constData());
    case QtWarningMsg:
    case QtFatalMsg:
        return logger.warning("%s", text.constData());
    }
}

/// The toolkit ends the process with the message itself then, which had better be seen.
bool endsWithAMessage()
{
    return qEnvironmentVariableIsSet("QT_FATAL_WARNINGS")
        || qEnvironmentVariableIsSet("QT_FATAL_CRITICALS");
}

} // namespace

StartMessages::StartMessages() : m_isHolding(!endsWithAMessage())
{
    if (m_isHolding)
        m_before = qInstallMessageHandler(&handle);
}

StartMessages::~StartMessages()
{
    if (!m_isHolding)
        return;
    qInstallMessageHandler(m_before);
    for (const Message &message : std::exchange(heldBack(), {}))
        say(message);
}

} // namespace tovek
