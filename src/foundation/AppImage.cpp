// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/AppImage.h"

#include <QFileInfo>
#include <QProcessEnvironment>

namespace tovek {

std::optional<QString> appImageOf(const QString &program, const QProcessEnvironment &environment)
{
    const QString file =
        QFileInfo(environment.value(QStringLiteral("APPIMAGE"))).canonicalFilePath();
    const QString mounted =
        QFileInfo(environment.value(QStringLiteral("APPDIR"))).canonicalFilePath();
    const QString own = QFileInfo(program).canonicalFilePath();
    const bool isOurs = !file.isEmpty() && !mounted.isEmpty()
        && own.startsWith(mounted + QLatin1Char('/')) && QFileInfo(file).isFile();
    return isOurs ? std::optional(file) : std::nullopt;
}

} // namespace tovek
