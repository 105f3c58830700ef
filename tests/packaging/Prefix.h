// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QProcess>
#include <QTemporaryDir>

namespace tovek {

/// A folder into which the build is installed, as into /usr.
struct Prefix
{
    [[nodiscard]] bool install()
    {
        QProcess cmake;
        cmake.setStandardOutputFile(QProcess::nullDevice());
        cmake.start(qEnvironmentVariable("TOVEK_CMAKE"),
                    {QStringLiteral("--install"), qEnvironmentVariable("TOVEK_BUILD"),
                     QStringLiteral("--prefix"), folder.path()});
        const bool isDone = cmake.waitForFinished() && cmake.exitStatus() == QProcess::NormalExit
            && cmake.exitCode() == 0;
        error = QString::fromUtf8(cmake.readAllStandardError());
        return isDone;
    }
    QString path(const QString &name) const { return folder.filePath(name); }

    QTemporaryDir folder;
    QString error;
};

} // namespace tovek
