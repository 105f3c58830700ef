// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DesktopColors.h"

#include "foundation/AskAside.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QProcess>

#include <algorithm>
#include <array>
#include <optional>

namespace tovek {

namespace {

constexpr int colorsPatienceMs = 333; // for a window that is to open
constexpr int asidePatienceMs = 5000; // where nobody waits
constexpr uint darkScheme = 1;

/// Invalid when no portal runs, or it knows no such colour. None is started for the question.
QVariant appearanceOfPortal(const QDBusConnection &bus, const QString &key, int patienceMs)
{
    QDBusMessage ask = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"),
        QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("Read"));
    ask.setAutoStartService(false);
    ask << QStringLiteral("org.freedesktop.appearance") << key;
    const QDBusMessage answer = bus.call(ask, QDBus::Block, patienceMs);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty())
        return {};
    // A variant in a variant, from the first days of that portal on.
    QVariant value = answer.arguments().first();
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

std::optional<uint> schemeOfPortal(const QDBusConnection &bus, int patienceMs)
{
    bool isNumber = false;
    const uint scheme =
        appearanceOfPortal(bus, QStringLiteral("color-scheme"), patienceMs).toUInt(&isNumber);
    return isNumber ? std::optional(scheme) : std::nullopt;
}

/// Values outside of a colour's range stand for none.
QColor accentOfPortal(const QDBusConnection &bus, int patienceMs)
{
    const QVariant value = appearanceOfPortal(bus, QStringLiteral("accent-color"), patienceMs);
    if (!value.canConvert<QDBusArgument>())
        return {};
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("(ddd)"))
        return {};
    std::array<double, 3> parts{};
    argument.beginStructure();
    for (double &part : parts)
        argument >> part;
    argument.endStructure();
    const bool isColor =
        std::all_of(parts.begin(), parts.end(), [](double part) { return part >= 0 && part <= 1; });
    return isColor ? QColor::fromRgbF(float(parts[0]), float(parts[1]), float(parts[2])) : QColor();
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
WindowTheme themeOn(const QDBusConnection &bus, int patienceMs)
{
    const auto scheme = schemeOfPortal(bus, patienceMs);
    WindowTheme theme;
    // A portal that does not answer is not waited for twice.
    if (scheme)
        theme.accent = accentOfPortal(bus, patienceMs);
    const QString style = qEnvironmentVariable("QT_STYLE_OVERRIDE");
    theme.isDark = style.contains(QLatin1String("dark"), Qt::CaseInsensitive)
        || (scheme ? *scheme == darkScheme : isDarkInGSettings());
    return theme;
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

WindowTheme DesktopColors::theme() const
{
    return themeOn(m_bus, colorsPatienceMs);
}

QFuture<WindowTheme> DesktopColors::ask() const
{
    return askAside<WindowTheme>([bus = m_bus] { return themeOn(bus, asidePatienceMs); });
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
