// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "menubar/DragFiles.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
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

/// Locked for as long as somebody has this; invalid where another process holds the lock, or where
/// the folder has gone meanwhile.
FileDescriptor lockFolder(const QString &path)
{
    FileDescriptor folder(::open(QFile::encodeName(path).constData(),
                                 O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat found = {};
    const bool isOurs = folder.isValid() && ::flock(folder.get(), LOCK_EX | LOCK_NB) == 0
        && ::fstat(folder.get(), &found) == 0 && found.st_nlink > 0;
    return isOurs ? std::move(folder) : FileDescriptor();
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
    if (!openParent())
        return;
    const QFileInfoList left =
        QDir(parentPath()).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden);
    for (const QFileInfo &folder : left) {
        // Whoever was killed holds no lock any more; a program on another display does.
        const FileDescriptor lock = lockFolder(folder.filePath());
        if (lock.isValid())
            QDir(folder.filePath()).removeRecursively();
    }
    ::rmdir(QFile::encodeName(parentPath()).constData());
}

DragFiles::Folder DragFiles::makeFolder()
{
    // A program that starts right now may take a folder that is not yet locked for a left one.
    constexpr int tries = 3;
    Folder folder;
    for (int i = 0; i < tries && !folder.lock.isValid(); ++i) {
        // Where somebody else has taken the parent's name, one of a chance name serves.
        folder.place = std::make_unique<QTemporaryDir>(
            openParent() ? parentPath() + QStringLiteral("/XXXXXX")
                         : QDir::tempPath() + QStringLiteral("/tovek-XXXXXX"));
        if (folder.place->isValid())
            folder.lock = lockFolder(folder.place->path());
    }
    return folder;
}

std::optional<QString> DragFiles::write(const QString &name, const QByteArray &contents)
{
    Q_ASSERT(isMainThread());
    Folder folder = makeFolder();
    if (!folder.place->isValid())
        return failed(folder.place->errorString());
    QFile file(folder.place->filePath(name));
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
