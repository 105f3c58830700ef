// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/NewFile.h"

#include "foundation/WriteAll.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tovek {

namespace {

constexpr mode_t ownerOnly = 0600;

bool isNoFileToLose(const QByteArray &name)
{
    struct stat status
    {
    };
    return stat(name.constData(), &status) == 0
        && (S_ISCHR(status.st_mode) || S_ISFIFO(status.st_mode));
}

} // namespace

std::optional<QString> writeTo(int descriptor, const QByteArray &bytes)
{
    const int error = writeAll(descriptor, bytes);
    return error ? std::optional(qt_error_string(error)) : std::nullopt;
}

std::optional<QString> writeNewFile(const QString &path, const QByteArray &bytes)
{
    const QByteArray name = QFile::encodeName(path);
    const bool isNew = !isNoFileToLose(name);
    const int flags = isNew ? O_CREAT | O_EXCL : 0;
    const int descriptor = open(name.constData(), O_WRONLY | O_CLOEXEC | flags, ownerOnly);
    if (descriptor < 0)
        return qt_error_string(errno);
    std::optional<QString> error = writeTo(descriptor, bytes);
    // Some file systems report a full disk only now.
    if (close(descriptor) != 0 && !error)
        error = qt_error_string(errno);
    if (error && isNew)
        unlink(name.constData());
    return error;
}

} // namespace tovek
