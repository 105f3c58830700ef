// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/StartMessages.h"

#include "foundation/Log.h"

#include <QStringList>

#include <cstdlib>

namespace tovek {

namespace {

/// Held back: if the start fails, only the first of them names the cause.
QStringList &heldBack()
{
    static QStringList messages;
    return messages;
}

void handle(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type != QtFatalMsg) {
        heldBack().append(message);
        return;
    }
    logLine(QStringLiteral("Failed to start: %1").arg(heldBack().value(0, message).trimmed()));
    std::_Exit(1);
}

} // namespace

StartMessages::StartMessages()
{
    qInstallMessageHandler(&handle);
}

StartMessages::~StartMessages()
{
    qInstallMessageHandler(nullptr);
    for (const QString &message : std::as_const(heldBack()))
        qWarning("%s", qUtf8Printable(message));
    heldBack().clear();
}

} // namespace tovek
