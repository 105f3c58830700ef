// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/SelectionReader.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QList>

#include <algorithm>
#include <sys/types.h>

namespace tovek {

/// The programs of this name that a process has started and that run, the oldest first.
inline QList<pid_t> childrenNamed(const QByteArray &name, qint64 parent)
{
    QList<pid_t> found;
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString &entry : entries) {
        QFile file(QStringLiteral("/proc/%1/stat").arg(entry));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray stat = file.readAll();
        const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        if (stat.contains("(" + name + ")") && fields.value(1).toLongLong() == parent
            && fields.value(0) != "Z")
            found.append(pid_t(entry.toInt()));
    }
    std::sort(found.begin(), found.end());
    return found;
}

/// The server hears of a window manager's death later than its parent, and then lays the windows
/// that it had framed over all others.
inline bool hasWindowManager(const QString &displayName)
{
    return SelectionReader(displayName.toLatin1(), "WM_S0").owner() != 0;
}

/// The one that keeps the clipboard of a display after the program has ended; 0 when there is none.
inline pid_t clipboardHolder(const QString &displayName)
{
    const auto words = [](const QString &path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll().split('\0') : QList<QByteArray>();
    };
    const QByteArray display = "DISPLAY=" + displayName.toLatin1();
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString &entry : entries) {
        const QString process = QStringLiteral("/proc/") + entry;
        if (words(process + QStringLiteral("/cmdline")).value(0).endsWith("/tovek-clipboard")
            && words(process + QStringLiteral("/environ")).contains(display))
            return pid_t(entry.toInt());
    }
    return 0;
}

} // namespace tovek
