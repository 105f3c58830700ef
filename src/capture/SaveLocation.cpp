// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/SaveLocation.h"

#include "foundation/Settings.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace tovek {

QString chosenSaveFolder(const UserDefaults &defaults)
{
    return Settings::saveFolderPath.in(defaults);
}

QString downloadsFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
}

QString usedSaveFolder(const QString &chosen)
{
    if (!chosen.isEmpty())
        return chosen;
    const QString downloads = downloadsFolder();
    return QFileInfo(downloads).isDir() ? downloads : QDir::homePath();
}

QString saveLocationAt(const QDateTime &time, const UserDefaults &defaults)
{
    const QString name = QStringLiteral("Tovek %1.png")
                             .arg(time.toString(QStringLiteral("yyyy-MM-dd 'at' HH.mm.ss")));
    const QString folder = chosenSaveFolder(defaults);
    return folder.isEmpty() ? name : QDir(folder).filePath(name);
}

QString fileAt(const QString &location)
{
    return QDir::isAbsolutePath(location) ? location : QDir(usedSaveFolder({})).filePath(location);
}

} // namespace tovek
