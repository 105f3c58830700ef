// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/SaveFolder.h"

#include "capture/SaveLocation.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace tovek {

FolderState folderState(const QString &path)
{
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists())
        return FolderState::missing;
    if (!info.isDir())
        return FolderState::notAFolder;
    // To make a file, one must be allowed to enter the folder, too.
    return info.isWritable() && info.isExecutable() ? FolderState::usable
                                                    : FolderState::notWritable;
}

FolderReport reportOnSaveFolder(const QString &chosen)
{
    const QString folder = usedSaveFolder(chosen);
    return {folder, folderState(folder)};
}

QString noteOn(FolderState state)
{
    switch (state) {
    case FolderState::usable:
        break;
    case FolderState::missing:
        return QCoreApplication::translate("SaveFolder", "This folder does not exist");
    case FolderState::notAFolder:
        return QCoreApplication::translate("SaveFolder", "This is not a folder");
    case FolderState::notWritable:
        return QCoreApplication::translate("SaveFolder", "This folder cannot be written to");
    case FolderState::notAnswering:
        return QCoreApplication::translate("SaveFolder", "This folder is not answering");
    }
    return {};
}

QString abbreviatedPath(const QString &path, const QString &home)
{
    const QString clean = QDir::cleanPath(path);
    const QString base = QDir::cleanPath(home);
    if (base.isEmpty() || base == QStringLiteral("/"))
        return clean;
    if (clean == base)
        return QStringLiteral("~");
    return clean.startsWith(base + QLatin1Char('/')) ? QLatin1Char('~') + clean.mid(base.size())
                                                     : clean;
}

} // namespace tovek
