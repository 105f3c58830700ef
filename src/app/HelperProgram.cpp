// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/HelperProgram.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace tovek {

QString helperProgram(const QString &name)
{
    const QDir folder(QCoreApplication::applicationDirPath());
    const QString beside = folder.filePath(name);
    return QFileInfo::exists(beside) ? beside
                                     : folder.filePath(QStringLiteral("../libexec/tovek/") + name);
}

} // namespace tovek
