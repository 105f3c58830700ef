// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DesktopShortcuts.h"

#include "platform/linux/Accelerator.h"
#include "platform/linux/GSettingsTool.h"
#include "platform/linux/KGlobalAccel.h"
#include "platform/linux/QtKeys.h"
#include "platform/linux/SessionBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QFileInfo>
#include <QRegularExpression>

namespace tovek {

namespace {

constexpr int holderPatienceMs = 500;
const QString gnomeSchemas = QStringLiteral(
    "^org\\.gnome\\.(desktop\\.wm\\.keybindings|mutter\\.keybindings|mutter\\.wayland\\."
    "keybindings|"
    "shell\\.keybindings|settings-daemon\\.plugins\\.media-keys(\\.custom-keybinding.*)?)\\b");

const QString gnomePlace = QStringLiteral("Settings → Keyboard → View and Customize Shortcuts");

struct XfceTable
{
    const char *name;
    bool isOfPrograms;
    const char *place;
};

constexpr XfceTable xfceTables[] = {
    {"commands", true, "Settings → Keyboard → Application Shortcuts"},
    {"xfwm4", false, "Settings → Window Manager → Keyboard"},
};

enum class Change { add, remove };

/// Of a list of combinations, by schema and key. False when it could not be changed.
bool changeList(const QString &setting, const QString &accelerator, Change change)
{
    const QStringList place = setting.split(QLatin1Char(' '));
    const auto now = askGSettings(QStringList{QStringLiteral("get")} + place, holderPatienceMs);
    if (place.size() != 2 || !now)
        return false;
    static const QRegularExpression quoted(QStringLiteral("'[^']*'"));
    const QString changed = QLatin1Char('\'') + accelerator + QLatin1Char('\'');
    QStringList values;
    auto matches = quoted.globalMatch(*now);
    while (matches.hasNext())
        values << matches.next().captured();
    values.removeAll(changed);
    if (change == Change::add)
        values << changed;
    const QString list = values.isEmpty()
        ? QStringLiteral("@as []")
        : QLatin1Char('[') + values.join(QStringLiteral(", ")) + QLatin1Char(']');
    return askGSettings(QStringList{QStringLiteral("set")} + place + QStringList{list},
                        holderPatienceMs)
        .has_value();
}

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
    m_entries.clear();
    if (m_desktops.contains(QStringLiteral("GNOME"))
        || m_desktops.contains(QStringLiteral("UNITY")))
        readGSettings();
    if (m_desktops.contains(QStringLiteral("XFCE")))
        readXfconf();
}

std::optional<ShortcutUse> DesktopShortcuts::use(KeyCombo combo)
{
    waitForTables();
    for (const Entry &entry : std::as_const(m_entries)) {
        if (isAccelerator(entry.accelerator, combo, m_layout))
            return entry.use;
    }
    return m_desktops.contains(QStringLiteral("KDE")) ? useInKde(combo) : std::nullopt;
}

QList<DesktopShortcuts::Entry> DesktopShortcuts::fromGSettings(const QString &output)
{
    static const QRegularExpression schema(gnomeSchemas);
    static const QRegularExpression quoted(QStringLiteral("'([^']+)'"));
    QList<Entry> found;
    for (const QString &line : output.split(QLatin1Char('\n'))) {
        if (!line.contains(schema))
            continue;
        // Schema, key, value.
        QString purpose = line.section(QLatin1Char(' '), 1, 1);
        purpose.replace(QLatin1Char('-'), QLatin1Char(' '));
        const QString value = line.section(QLatin1Char(' '), 2);
        const bool isList = value.startsWith(QLatin1Char('['));
        auto values = quoted.globalMatch(value);
        while (values.hasNext())
            found.append({values.next().captured(1),
                          {QStringLiteral("the desktop (“%1”)").arg(purpose), gnomePlace},
                          isList ? line.section(QLatin1Char(' '), 0, 1) : QString()});
    }
    return found;
}

QList<DesktopShortcuts::Entry> DesktopShortcuts::fromXfconf(const QVariantMap &properties)
{
    QList<Entry> found;
    for (const XfceTable &table : xfceTables) {
        const QString custom = QStringLiteral("/%1/custom/").arg(QLatin1String(table.name));
        const bool isOverridden = properties.value(custom + QStringLiteral("override")).toBool();
        const QString used =
            isOverridden ? custom : QStringLiteral("/%1/default/").arg(QLatin1String(table.name));
        for (auto property = properties.begin(); property != properties.end(); ++property) {
            const QString &key = property.key();
            const QString value = property.value().toString();
            if (!key.startsWith(used) || key.endsWith(QStringLiteral("/override"))
                || value.isEmpty())
                continue;
            QString user = QFileInfo(value.section(QLatin1Char(' '), 0, 0)).fileName();
            if (!table.isOfPrograms)
                user = QStringLiteral("the window manager");
            found.append({key.mid(used.size()).section(QLatin1Char('/'), 0, 0),
                          {user, QString::fromUtf8(table.place)},
                          {}});
        }
    }
    return found;
}

bool DesktopShortcuts::canTakeAway(KeyCombo combo)
{
    waitForTables();
    bool isAny = false;
    for (const Entry &entry : std::as_const(m_entries)) {
        if (!isAccelerator(entry.accelerator, combo, m_layout))
            continue;
        if (entry.setting.isEmpty())
            return false;
        isAny = true;
    }
    return isAny;
}

QString DesktopShortcuts::takeAway(KeyCombo combo)
{
    if (!canTakeAway(combo))
        return {};
    QStringList taken;
    for (const Entry &entry : std::as_const(m_entries)) {
        if (isAccelerator(entry.accelerator, combo, m_layout)
            && changeList(entry.setting, entry.accelerator, Change::remove))
            taken << entry.setting + QLatin1Char(' ') + entry.accelerator;
    }
    m_entries.removeIf([&](const Entry &entry) {
        return taken.contains(entry.setting + QLatin1Char(' ') + entry.accelerator);
    });
    return taken.join(QLatin1Char('\n'));
}

void DesktopShortcuts::giveBack(const QString &taken)
{
    for (const QString &line : taken.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        changeList(line.section(QLatin1Char(' '), 0, 1), line.section(QLatin1Char(' '), 2),
                   Change::add);
    refresh();
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
        SessionBus::current().asyncCall(ask, holderPatienceMs));
}

void DesktopShortcuts::waitForTables()
{
    if (m_gsettings) {
        if (m_gsettings->state() == QProcess::NotRunning
            || m_gsettings->waitForFinished(holderPatienceMs))
            m_entries += fromGSettings(QString::fromUtf8(m_gsettings->readAllStandardOutput()));
        else
            m_gsettings->kill();
        m_gsettings->waitForFinished(holderPatienceMs);
        m_gsettings.reset();
    }
    if (m_xfconf) {
        m_xfconf->waitForFinished();
        const QDBusPendingReply<QVariantMap> reply = *m_xfconf;
        if (reply.isValid())
            m_entries += fromXfconf(reply.value());
        m_xfconf.reset();
    }
}

std::optional<ShortcutUse> DesktopShortcuts::useInKde(KeyCombo combo) const
{
    for (const int key : qtKeysOf(combo, m_layout)) {
        QDBusMessage ask = KGlobalAccel::call(QStringLiteral("action"));
        ask << key;
        const QDBusReply<QStringList> owner =
            SessionBus::current().call(ask, QDBus::Block, holderPatienceMs);
        // Component and action by their identifiers, then both by their names.
        const QStringList names = owner.isValid() ? owner.value() : QStringList();
        if (!names.isEmpty() && names.first() != KGlobalAccel::ownComponent)
            return ShortcutUse{names.value(2, names.first()),
                               QStringLiteral("System Settings → Shortcuts")};
    }
    return std::nullopt;
}

} // namespace tovek
