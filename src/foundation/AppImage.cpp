// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/AppImage.h"

#include <QFile>
#include <QFileInfo>
#include <QProcessEnvironment>

#include <cstdio>
#include <unistd.h>

namespace tovek {

namespace {

QString keptName(const QString &file)
{
    const QFileInfo info(file);
    return QStringLiteral("%1/.%2.previous").arg(info.path(), info.fileName());
}

} // namespace

std::optional<QString> appImageOf(const QString &program, const QProcessEnvironment &environment)
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

void keepAppImage(const QString &file)
{
    QFile::remove(keptName(file));
    // A second name for the same bytes; a copy where the file system knows no second names.
    if (link(QFile::encodeName(file).constData(), QFile::encodeName(keptName(file)).constData())
        != 0)
        QFile::copy(file, keptName(file));
}

bool restoreAppImage(const QString &file)
{
    return std::rename(QFile::encodeName(keptName(file)).constData(),
                       QFile::encodeName(file).constData())
        == 0;
}

void forgetKeptAppImage(const QString &file)
{
    QFile::remove(keptName(file));
}

} // namespace tovek
