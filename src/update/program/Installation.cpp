// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/program/Installation.h"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <gnu/libc-version.h>

namespace tovek {

namespace {

/// Where the running program is said to be an AppImage, by the program that unpacked it. The
/// variables may come from another AppImage that started this program, a terminal for instance.
std::optional<QString> appImage(const QString &program, const QProcessEnvironment &environment)
{
    const QString file =
        QFileInfo(environment.value(QStringLiteral("APPIMAGE"))).canonicalFilePath();
    const QString mounted =
        QFileInfo(environment.value(QStringLiteral("APPDIR"))).canonicalFilePath();
    const QString own = QFileInfo(program).canonicalFilePath();
    const bool isOurs = !file.isEmpty() && !mounted.isEmpty()
        && own.startsWith(mounted + QLatin1Char('/')) && QFileInfo(file).isFile();
    return isOurs ? std::optional(file) : std::nullopt;
}

bool isOfDebianPackage(const QString &program)
{
    QProcess query;
    query.setStandardOutputFile(QProcess::nullDevice());
    query.setStandardErrorFile(QProcess::nullDevice());
    query.start(QStringLiteral("dpkg-query"),
                {QStringLiteral("--search"), QFileInfo(program).canonicalFilePath()});
    return query.waitForFinished() && query.exitStatus() == QProcess::NormalExit
        && query.exitCode() == 0;
}

} // namespace

std::optional<Installation> findInstallation(const QString &program,
                                             const QProcessEnvironment &environment)
{
    // Beside the file that it replaces: a file is renamed at one instant only within a file system.
    if (const auto file = appImage(program, environment))
        return Installation{PackageKind::appImage, *file, QFileInfo(*file).path()};
    if (!isOfDebianPackage(program))
        return std::nullopt;
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return Installation{PackageKind::debian, {}, cache + QStringLiteral("/tovek/updates")};
}

QString systemVersion()
{
    return QString::fromLatin1(gnu_get_libc_version());
}

} // namespace tovek
