// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/FileWriter.h"

#include <QFile>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tovek {

namespace {

constexpr mode_t permissions = 0666; // less what the user's mask takes away

/// 0, or the error number.
int writeAll(int descriptor, const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t written =
            write(descriptor, bytes.constData() + done, size_t(bytes.size() - done));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return written < 0 ? errno : EIO;
        done += written;
    }
    return 0;
}

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

int writeBeside(const QByteArray &path, const QByteArray &bytes)
{
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
