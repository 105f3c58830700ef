// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "menubar/DragFiles.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace tovek {

namespace {

QString parentPath()
{
    return QDir::tempPath() + QStringLiteral("/tovek-%1").arg(::geteuid());
}

/// True when the folder is there, and is ours alone.
bool openParent()
{
    const QByteArray path = QFile::encodeName(parentPath());
    struct stat found = {};
    const bool isThere = ::mkdir(path.constData(), S_IRWXU) == 0 || errno == EEXIST;
    return isThere && ::lstat(path.constData(), &found) == 0 && S_ISDIR(found.st_mode)
        && found.st_uid == ::geteuid() && (found.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

std::nullopt_t failed(const QString &reason)
{
    logLine(QStringLiteral("Failed to write temp file: ") + reason);
    return std::nullopt;
}

} // namespace

DragFiles::~DragFiles()
{
    m_folders.clear();
    ::rmdir(QFile::encodeName(parentPath())
                .constData()); // unless another program of ours has files there
}

void DragFiles::removeLeft()
{
    if (openParent())
        QDir(parentPath()).removeRecursively();
}

std::optional<QString> DragFiles::write(const QString &name, const QByteArray &contents)
{
    Q_ASSERT(isMainThread());
    // Where somebody else has taken the parent's name, one of a chance name serves.
    auto folder = std::make_unique<QTemporaryDir>(
        openParent() ? parentPath() + QStringLiteral("/XXXXXX")
                     : QDir::tempPath() + QStringLiteral("/tovek-XXXXXX"));
    if (!folder->isValid())
        return failed(folder->errorString());
    QFile file(folder->filePath(name));
    if (!file.open(QIODevice::WriteOnly)
        || !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)
        || file.write(contents) != contents.size() || !file.flush())
        return failed(file.errorString());
    m_folders.push_back(std::move(folder));
    return file.fileName();
}

void DragFiles::removeOldest()
{
    Q_ASSERT(isMainThread());
    if (!m_folders.empty())
        m_folders.erase(m_folders.begin());
}

} // namespace tovek
