// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/Relaunch.h"

#include "foundation/AppImage.h"
#include "foundation/Log.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace tovek {

namespace {

constexpr unsigned firstOwn = 3; // after standard input, output and error

} // namespace

void becomeProgram(const QString &path)
{
    // An AppImage stays mounted for as long as anybody holds what its first process was given.
    close_range(firstOwn, ~0U, CLOSE_RANGE_CLOEXEC);
    QByteArray file = QFile::encodeName(path);
    QByteArray option("--background");
    char *arguments[] = {file.data(), option.data(), nullptr};
    execv(file.constData(), arguments);
    const int reason = errno;
    // The one that was replaced is there still.
    if (restoreAppImage(path))
        execv(file.constData(), arguments);
    logLine(QStringLiteral("Failed to start %1: %2")
                .arg(path, QString::fromLocal8Bit(std::strerror(reason))));
}

} // namespace tovek
