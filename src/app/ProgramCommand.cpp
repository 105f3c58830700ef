// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/ProgramCommand.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStandardPaths>

namespace tovek {

QString programCommand()
{
    const QString image = qEnvironmentVariable("APPIMAGE");
    const QString file = image.isEmpty() ? QCoreApplication::applicationFilePath() : image;
    const QString name = QStringLiteral("tovek");
    const QString found = QStandardPaths::findExecutable(name);
    return QFileInfo(found).canonicalFilePath() == QFileInfo(file).canonicalFilePath() ? name
                                                                                       : file;
}

} // namespace tovek
