// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/WaylandClipboardReader.h"

#include "support/WaylandDesktop.h"

#include <QCoreApplication>
#include <QStandardPaths>

#include <chrono>
#include <future>

namespace tovek {

QString WaylandClipboardReader::missing()
{
    return QStandardPaths::findExecutable(QStringLiteral("wl-paste")).isEmpty()
        ? QStringLiteral("wl-paste is not installed")
        : QString();
}

QStringList WaylandClipboardReader::targets()
{
    QStringList targets =
        QString::fromUtf8(paste({QStringLiteral("--list-types")})).split('\n', Qt::SkipEmptyParts);
    targets.sort();
    return targets;
}

QByteArray WaylandClipboardReader::read(const QString &target)
{
    return paste({QStringLiteral("--no-newline"), QStringLiteral("--type"), target});
}

QByteArray WaylandClipboardReader::paste(const QStringList &arguments)
{
    auto pasted = std::async(std::launch::async, [this, &arguments] {
        return m_desktop.output(QStringLiteral("wl-paste"), arguments);
    });
    while (pasted.wait_for(std::chrono::milliseconds(0)) != std::future_status::ready)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return pasted.get();
}

} // namespace tovek
