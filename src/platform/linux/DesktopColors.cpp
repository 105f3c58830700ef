// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DesktopColors.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QProcess>

#include <optional>

namespace tovek {

namespace {

constexpr int patienceMs = 333;
constexpr uint darkScheme = 1;

/// Absent when no portal runs, or it knows nothing of colours. None is started for the question.
std::optional<uint> schemeOfPortal()
{
    QDBusMessage ask = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"),
        QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("Read"));
    ask.setAutoStartService(false);
    ask << QStringLiteral("org.freedesktop.appearance") << QStringLiteral("color-scheme");
    const QDBusMessage answer = QDBusConnection::sessionBus().call(ask, QDBus::Block, patienceMs);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty())
        return std::nullopt;
    // A variant in a variant, from the first days of that portal on.
    QVariant value = answer.arguments().first();
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    bool isNumber = false;
    const uint scheme = value.toUInt(&isNumber);
    return isNumber ? std::optional(scheme) : std::nullopt;
}

bool isDarkInGSettings()
{
    QProcess tool;
    tool.setStandardErrorFile(QProcess::nullDevice());
    tool.start(QStringLiteral("gsettings"),
               {QStringLiteral("get"), QStringLiteral("org.gnome.desktop.interface"),
                QStringLiteral("color-scheme")});
    if (!tool.waitForFinished(patienceMs)) {
        tool.kill();
        tool.waitForFinished(patienceMs);
        return false;
    }
    return tool.readAllStandardOutput().contains("prefer-dark");
}

} // namespace

bool areDarkWindowsWanted()
{
    const QString style = qEnvironmentVariable("QT_STYLE_OVERRIDE");
    if (style.contains(QLatin1String("dark"), Qt::CaseInsensitive))
        return true;
    if (const auto scheme = schemeOfPortal())
        return *scheme == darkScheme;
    return isDarkInGSettings();
}

} // namespace tovek
