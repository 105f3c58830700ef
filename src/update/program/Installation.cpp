// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/program/Installation.h"

#include "foundation/AppImage.h"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <gnu/libc-version.h>

namespace tovek {

namespace {

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
    if (const auto file = appImageOf(program, environment))
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
