// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/GSettingsTool.h"

#include <QProcess>

namespace tovek {

std::optional<QString> askGSettings(const QStringList &arguments, int limitMs)
{
    QProcess tool;
    tool.setStandardErrorFile(QProcess::nullDevice());
    tool.start(QStringLiteral("gsettings"), arguments);
    if (!tool.waitForFinished(limitMs)) {
        tool.kill();
        tool.waitForFinished(limitMs);
        return std::nullopt;
    }
    if (tool.exitStatus() != QProcess::NormalExit || tool.exitCode() != 0)
        return std::nullopt;
    return QString::fromUtf8(tool.readAllStandardOutput()).trimmed();
}

} // namespace tovek
