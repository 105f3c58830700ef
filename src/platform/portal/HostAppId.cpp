// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/HostAppId.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>

namespace tovek {

namespace {

/// Names in units write what is special in them as "\x2d".
QString unescaped(const QString &name)
{
    static const QRegularExpression escape(QStringLiteral("\\\\x([0-9a-fA-F]{2})"));
    QString plain;
    qsizetype end = 0;
    auto matches = escape.globalMatch(name);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        plain += name.mid(end, match.capturedStart() - end)
            + QChar::fromLatin1(char(match.captured(1).toInt(nullptr, 16)));
        end = match.capturedEnd();
    }
    return plain + name.mid(end);
}

/// The unit of the user's own manager in a path of control groups; empty where there is none.
QString userUnit(const QString &path)
{
    QStringList parts = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    while (!parts.isEmpty() && !parts.takeFirst().startsWith(QLatin1String("user@"))) { }
    for (const QString &part : std::as_const(parts)) {
        if (!part.endsWith(QLatin1String(".slice")))
            return part;
    }
    return {};
}

QString nameInUnit(const QString &unit)
{
    // app[-LAUNCHER]-NAME-NUMBER.scope and app[-LAUNCHER]-NAME[@NUMBER].service
    static const QRegularExpression patterns[] = {
        QRegularExpression(QStringLiteral("^app-(?:[[:alnum:]]+-)?(.+?)-[[:alnum:]]*\\.scope$")),
        QRegularExpression(
            QStringLiteral("^app-(?:[[:alnum:]]+-)?(.+?)(?:@[[:alnum:]]*)?\\.service$")),
    };
    for (const QRegularExpression &pattern : patterns) {
        const QRegularExpressionMatch match = pattern.match(unit);
        if (match.hasMatch())
            return unescaped(match.captured(1));
    }
    return {};
}

} // namespace

QString hostAppId(const QString &cgroups)
{
    const QStringList lines = cgroups.split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        // NUMBER:CONTROLLERS:PATH, where only systemd's own groups are named after units.
        const QString controllers = line.section(QLatin1Char(':'), 1, 1);
        if (!controllers.isEmpty() && controllers != QLatin1String("name=systemd"))
            continue;
        const QString name = nameInUnit(userUnit(line.section(QLatin1Char(':'), 2)));
        if (!name.isEmpty())
            return name;
    }
    return {};
}

QString hostAppId()
{
    QFile groups(QStringLiteral("/proc/self/cgroup"));
    return groups.open(QIODevice::ReadOnly) ? hostAppId(QString::fromUtf8(groups.readAll()))
                                            : QString();
}

bool isInSandbox()
{
    return QFile::exists(QStringLiteral("/.flatpak-info")) || qEnvironmentVariableIsSet("SNAP");
}

} // namespace tovek
