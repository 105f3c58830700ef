// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DesktopColors.h"

#include "foundation/AskAside.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QProcess>

#include <algorithm>
#include <optional>

namespace tovek {

namespace {

constexpr int colorsPatienceMs = 333;
constexpr uint darkScheme = 1;

/// Absent when no portal runs, or it knows nothing of colours. None is started for the question.
std::optional<uint> schemeOfPortal(const QDBusConnection &bus)
{
    QDBusMessage ask = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"),
        QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("Read"));
    ask.setAutoStartService(false);
    ask << QStringLiteral("org.freedesktop.appearance") << QStringLiteral("color-scheme");
    const QDBusMessage answer = bus.call(ask, QDBus::Block, colorsPatienceMs);
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
    if (!tool.waitForFinished(colorsPatienceMs)) {
        tool.kill();
        tool.waitForFinished(colorsPatienceMs);
        return false;
    }
    return tool.readAllStandardOutput().contains("prefer-dark");
}

/// From any thread.
bool areDarkOn(const QDBusConnection &bus)
{
    const QString style = qEnvironmentVariable("QT_STYLE_OVERRIDE");
    if (style.contains(QLatin1String("dark"), Qt::CaseInsensitive))
        return true;
    if (const auto scheme = schemeOfPortal(bus))
        return *scheme == darkScheme;
    return isDarkInGSettings();
}

} // namespace

DesktopColors::DesktopColors(const QDBusConnection &bus) : m_bus(bus)
{
    setBus(bus);
}

void DesktopColors::setBus(const QDBusConnection &bus)
{
    m_bus = bus;
    if (!m_bus.isConnected())
        return;
    // Of no service by name: for that the bus would have to be asked, and waited for.
    m_bus.connect(QString(), QStringLiteral("/org/freedesktop/portal/desktop"),
                  QStringLiteral("org.freedesktop.portal.Settings"),
                  QStringLiteral("SettingChanged"), {QStringLiteral("org.freedesktop.appearance")},
                  QString(), this, SLOT(settingChanged()));
    m_bus.connect(QString(), QStringLiteral("/ca/desrt/dconf/Writer/user"),
                  QStringLiteral("ca.desrt.dconf.Writer"), QStringLiteral("Notify"), this,
                  SLOT(storeChanged(QString, QStringList, QString)));
}

bool DesktopColors::areDark() const
{
    return areDarkOn(m_bus);
}

QFuture<bool> DesktopColors::ask() const
{
    return askAside<bool>([bus = m_bus] { return areDarkOn(bus); });
}

void DesktopColors::settingChanged()
{
    if (onChanged)
        onChanged();
}

void DesktopColors::storeChanged(const QString &path, const QStringList &keys, const QString &)
{
    static const QString own = QStringLiteral("/org/gnome/desktop/interface/color-scheme");
    const bool isOwn = keys.isEmpty()
        ? own.startsWith(path)
        : std::any_of(keys.begin(), keys.end(),
                      [&path](const QString &key) { return own.startsWith(path + key); });
    if (isOwn)
        settingChanged();
}

} // namespace tovek
