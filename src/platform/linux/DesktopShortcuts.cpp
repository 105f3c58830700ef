// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DesktopShortcuts.h"

#include "platform/linux/Accelerator.h"
#include "platform/linux/KGlobalAccel.h"
#include "platform/linux/QtKeys.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QRegularExpression>

#include <algorithm>

namespace tovek {

namespace {

constexpr int patienceMs = 500;
const QString gnomeSchemas = QStringLiteral(
    "^org\\.gnome\\.(desktop\\.wm\\.keybindings|mutter\\.keybindings|mutter\\.wayland\\."
    "keybindings|"
    "shell\\.keybindings|settings-daemon\\.plugins\\.media-keys(\\.custom-keybinding.*)?)\\b");

} // namespace

DesktopShortcuts::DesktopShortcuts(const QString &currentDesktop, const KeyboardLayout &layout)
    : m_desktops(currentDesktop.toUpper().split(QLatin1Char(':'), Qt::SkipEmptyParts))
    , m_layout(layout)
{
}

DesktopShortcuts::~DesktopShortcuts() = default;

void DesktopShortcuts::refresh()
{
    if (m_gsettings || m_xfconf)
        return;
    m_accelerators.clear();
    if (m_desktops.contains(QStringLiteral("GNOME"))
        || m_desktops.contains(QStringLiteral("UNITY")))
        readGSettings();
    if (m_desktops.contains(QStringLiteral("XFCE")))
        readXfconf();
}

bool DesktopShortcuts::contains(KeyCombo combo)
{
    waitForTables();
    for (const QString &accelerator : std::as_const(m_accelerators)) {
        if (isAccelerator(accelerator, combo, m_layout))
            return true;
    }
    return m_desktops.contains(QStringLiteral("KDE")) && isKnownToKde(combo);
}

QStringList DesktopShortcuts::fromGSettings(const QString &output)
{
    static const QRegularExpression schema(gnomeSchemas);
    static const QRegularExpression quoted(QStringLiteral("'([^']+)'"));
    QStringList found;
    for (const QString &line : output.split(QLatin1Char('\n'))) {
        if (!line.contains(schema))
            continue;
        // Schema, key, value.
        auto values = quoted.globalMatch(line.section(QLatin1Char(' '), 2));
        while (values.hasNext())
            found.append(values.next().captured(1));
    }
    return found;
}

QStringList DesktopShortcuts::fromXfconf(const QVariantMap &properties)
{
    QStringList found;
    for (const char *table : {"commands", "xfwm4"}) {
        const QString custom = QStringLiteral("/%1/custom/").arg(QLatin1String(table));
        const bool isOverridden = properties.value(custom + QStringLiteral("override")).toBool();
        const QString used =
            isOverridden ? custom : QStringLiteral("/%1/default/").arg(QLatin1String(table));
        for (auto property = properties.begin(); property != properties.end(); ++property) {
            const QString key = property.key();
            if (key.startsWith(used) && !key.endsWith(QStringLiteral("/override"))
                && !property.value().toString().isEmpty())
                found.append(key.mid(used.size()).section(QLatin1Char('/'), 0, 0));
        }
    }
    return found;
}

void DesktopShortcuts::readGSettings()
{
    m_gsettings = std::make_unique<QProcess>();
    m_gsettings->setStandardErrorFile(QProcess::nullDevice());
    m_gsettings->start(QStringLiteral("gsettings"), {QStringLiteral("list-recursively")});
}

void DesktopShortcuts::readXfconf()
{
    QDBusMessage ask = QDBusMessage::createMethodCall(
        QStringLiteral("org.xfce.Xfconf"), QStringLiteral("/org/xfce/Xfconf"),
        QStringLiteral("org.xfce.Xfconf"), QStringLiteral("GetAllProperties"));
    ask << QStringLiteral("xfce4-keyboard-shortcuts") << QStringLiteral("/");
    m_xfconf = std::make_unique<QDBusPendingCallWatcher>(
        QDBusConnection::sessionBus().asyncCall(ask, patienceMs));
}

void DesktopShortcuts::waitForTables()
{
    if (m_gsettings) {
        if (m_gsettings->state() == QProcess::NotRunning
            || m_gsettings->waitForFinished(patienceMs))
            m_accelerators +=
                fromGSettings(QString::fromUtf8(m_gsettings->readAllStandardOutput()));
        else
            m_gsettings->kill();
        m_gsettings->waitForFinished(patienceMs);
        m_gsettings.reset();
    }
    if (m_xfconf) {
        m_xfconf->waitForFinished();
        const QDBusPendingReply<QVariantMap> reply = *m_xfconf;
        if (reply.isValid())
            m_accelerators += fromXfconf(reply.value());
        m_xfconf.reset();
    }
}

bool DesktopShortcuts::isKnownToKde(KeyCombo combo) const
{
    const QList<int> keys = qtKeysOf(combo, m_layout);
    return std::any_of(keys.begin(), keys.end(), [](int key) {
        QDBusMessage ask = KGlobalAccel::call(QStringLiteral("action"));
        ask << key;
        const QDBusReply<QStringList> owner =
            QDBusConnection::sessionBus().call(ask, QDBus::Block, patienceMs);
        return owner.isValid() && !owner.value().isEmpty()
            && owner.value().first() != KGlobalAccel::ownComponent;
    });
}

} // namespace tovek
