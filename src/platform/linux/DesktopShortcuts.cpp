// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DesktopShortcuts.h"

#include "platform/KeyboardLayout.h"
#include "platform/linux/Accelerator.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QRegularExpression>

namespace tovek {

namespace {

constexpr int patienceMs = 500;
const QString gnomeSchemas = QStringLiteral(
    "^org\\.gnome\\.(desktop\\.wm\\.keybindings|mutter\\.keybindings|mutter\\.wayland\\."
    "keybindings|"
    "shell\\.keybindings|settings-daemon\\.plugins\\.media-keys(\\.custom-keybinding.*)?)\\b");

struct QtKey
{
    quint32 carbon;
    Qt::Key key;
};

// What the layout does not tell.
constexpr QtKey qtKeys[] = {
    {105, Qt::Key_Print},    {36, Qt::Key_Return}, {48, Qt::Key_Tab},     {49, Qt::Key_Space},
    {51, Qt::Key_Backspace}, {53, Qt::Key_Escape}, {117, Qt::Key_Delete}, {114, Qt::Key_Insert},
    {115, Qt::Key_Home},     {119, Qt::Key_End},   {116, Qt::Key_PageUp}, {121, Qt::Key_PageDown},
    {123, Qt::Key_Left},     {124, Qt::Key_Right}, {125, Qt::Key_Down},   {126, Qt::Key_Up},
    {122, Qt::Key_F1},       {120, Qt::Key_F2},    {99, Qt::Key_F3},      {118, Qt::Key_F4},
    {96, Qt::Key_F5},        {97, Qt::Key_F6},     {98, Qt::Key_F7},      {100, Qt::Key_F8},
    {101, Qt::Key_F9},       {109, Qt::Key_F10},   {103, Qt::Key_F11},    {111, Qt::Key_F12},
};

/// 0 when the toolkit has no name for the key.
int qtKeyOf(KeyCombo combo, const KeyboardLayout &layout)
{
    int key = 0;
    for (const QtKey &row : qtKeys) {
        if (row.carbon == combo.carbonKeyCode)
            key = row.key;
    }
    if (key == 0) {
        const auto typed = layout.character(int(combo.carbonKeyCode));
        key = typed ? int(typed->toUpper().toUcs4().value(0)) : 0;
    }
    if (key == 0)
        return 0;
    const quint32 modifiers = combo.carbonModifiers;
    return key | (modifiers & 0x1000 ? int(Qt::ControlModifier) : 0)
        | (modifiers & 0x800 ? int(Qt::AltModifier) : 0)
        | (modifiers & 0x200 ? int(Qt::ShiftModifier) : 0)
        | (modifiers & 0x100 ? int(Qt::MetaModifier) : 0);
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
    const int key = qtKeyOf(combo, m_layout);
    if (key == 0)
        return false;
    QDBusMessage ask = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.kglobalaccel"), QStringLiteral("/kglobalaccel"),
        QStringLiteral("org.kde.KGlobalAccel"), QStringLiteral("action"));
    ask << key;
    const QDBusReply<QStringList> owner =
        QDBusConnection::sessionBus().call(ask, QDBus::Block, patienceMs);
    return owner.isValid() && !owner.value().isEmpty();
}

} // namespace tovek
