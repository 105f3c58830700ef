// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/HelperProgram.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace tovek {

QString helperProgram(const QString &name)
{
    const QDir folder(QCoreApplication::applicationDirPath());
    for (const QString &place : {QString(), QStringLiteral("../bin/")}) {
        const QString path = folder.filePath(place + name);
        if (QFileInfo(path).isExecutable())
            return path;
    }
    return folder.filePath(QStringLiteral("../libexec/tovek/") + name);
}

} // namespace tovek
