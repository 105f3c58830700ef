// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/FileWriter.h"

#include "foundation/WriteAll.h"

#include <QFile>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tovek {

namespace {

constexpr mode_t permissions = 0666; // less what the user's mask takes away

/// Closes the descriptor too; some file systems report a full disk only then.
int writeAndClose(int descriptor, const QByteArray &bytes)
{
    if (descriptor < 0)
        return errno;
    const int error = writeAll(descriptor, bytes);
    const int closeError = close(descriptor) == 0 ? 0 : errno;
    return error ? error : closeError;
}

int writeInPlace(const QByteArray &path, const QByteArray &bytes)
{
    return writeAndClose(
        open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, permissions), bytes);
}

QByteArray hiddenNameBeside(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return path.left(slash + 1) + '.' + path.mid(slash + 1) + '.' + QByteArray::number(getpid());
}

/// Gives a file without a name this one. Only another name can replace an older file at once.
int nameFile(int descriptor, const QByteArray &path)
{
    const QByteArray source = "/proc/self/fd/" + QByteArray::number(descriptor);
    const auto link = [&](const QByteArray &name) {
        return linkat(AT_FDCWD, source.constData(), AT_FDCWD, name.constData(), AT_SYMLINK_FOLLOW)
                == 0
            ? 0
            : errno;
    };
    int error = link(path);
    if (error != EEXIST)
        return error;
    const QByteArray hidden = hiddenNameBeside(path);
    unlink(hidden.constData()); // of one that was killed between the two
    error = link(hidden);
    if (!error && rename(hidden.constData(), path.constData()) != 0) {
        error = errno;
        unlink(hidden.constData());
    }
    return error;
}

/// Absent where the file system has no files without a name, or cannot name them.
std::optional<int> writeUnnamed(const QByteArray &path, const QByteArray &bytes)
{
    const QByteArray folder = path.left(path.lastIndexOf('/') + 1);
    const int descriptor = open(folder.isEmpty() ? "." : folder.constData(),
                                O_WRONLY | O_TMPFILE | O_CLOEXEC, permissions);
    if (descriptor < 0)
        return std::nullopt;
    const int writeError = writeAll(descriptor, bytes);
    const int nameError = writeError ? 0 : nameFile(descriptor, path);
    const int closeError = close(descriptor) == 0 ? 0 : errno;
    if (writeError)
        return writeError;
    if (nameError)
        return std::nullopt;
    return closeError;
}

int writeBeside(const QByteArray &path, const QByteArray &bytes)
{
    if (const auto error = writeUnnamed(path, bytes))
        return *error;
    const QByteArray hidden = hiddenNameBeside(path);
    const int descriptor = open(hidden.constData(),
                                O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, permissions);
    if (descriptor < 0)
        return errno;
    int error = writeAndClose(descriptor, bytes);
    if (!error && rename(hidden.constData(), path.constData()) != 0)
        error = errno;
    if (error)
        unlink(hidden.constData());
    return error;
}

} // namespace

std::optional<QString> writeFile(const QString &path, const QByteArray &bytes)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status
    {
    };
    const bool exists = lstat(name.constData(), &status) == 0;
    int error = 0;
    if (exists && !S_ISREG(status.st_mode)) {
        error = writeInPlace(name, bytes);
    } else {
        error = writeBeside(name, bytes);
        if (exists && (error == EACCES || error == EPERM))
            error = writeInPlace(name, bytes);
    }
    return error ? std::optional(qt_error_string(error)) : std::nullopt;
}

void syncToDisk(const QString &path)
{
    const int descriptor = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    fdatasync(descriptor);
    close(descriptor);
}

} // namespace tovek
