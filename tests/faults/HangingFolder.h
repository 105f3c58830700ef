// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <optional>

namespace tovek {

/// How programs are given a file system that hangs; nothing where the kernel permits none.
inline std::optional<QStringList> hangingMountOptions(const QString &helper)
{
    const QTemporaryDir folder;
    for (const QStringList &options :
         {QStringList{"--mount"}, {"--user", "--map-current-user", "--keep-caps", "--mount"}}) {
        QProcess attempt;
        attempt.start("unshare", options + QStringList{helper, folder.path(), "/bin/true"});
        if (attempt.waitForFinished() && attempt.exitStatus() == QProcess::NormalExit
            && attempt.exitCode() == 0)
            return options;
    }
    return std::nullopt;
}

/// A program that is the one under test, for which the folder never answers. Empty when it cannot
/// be written.
inline QString programWithHangingFolder(const QString &script, const QString &folder,
                                        const QString &helper)
{
    const QByteArray lines = QStringLiteral("#!/bin/sh\nexec unshare %1 '%2' '%3' '%4' \"$@\"\n")
                                 .arg(hangingMountOptions(helper)->join(QLatin1Char(' ')), helper,
                                      folder, qEnvironmentVariable("TOVEK_PROGRAM"))
                                 .toUtf8();
    QFile file(script);
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(lines) == lines.size()
        && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return isWritten ? script : QString();
}

} // namespace tovek
