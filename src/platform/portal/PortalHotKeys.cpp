// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PortalHotKeys.h"

#include "foundation/Log.h"
#include "platform/linux/Accelerator.h"
#include "platform/portal/PortalRequest.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QDBusVariant>

#include <utility>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto sessionLimit = 5s;
constexpr auto shortcutThinkingTime = 10min;
constexpr int shortcutPatienceMs = 1000;
constexpr auto longestTap = 250ms;
constexpr auto repeatDelay = 700ms; // 500 unless the user chose otherwise, and then a few a second
const QString shortcutsInterface = QStringLiteral("GlobalShortcuts");

struct PortalShortcut
{
    QString name;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &out, const PortalShortcut &shortcut)
{
    out.beginStructure();
    out << shortcut.name << shortcut.properties;
    out.endStructure();
    return out;
}

const QDBusArgument &operator>>(const QDBusArgument &in, PortalShortcut &shortcut)
{
    in.beginStructure();
    in >> shortcut.name >> shortcut.properties;
    in.endStructure();
    return in;
}

QStringList namesIn(const QVariantMap &results)
{
    QList<PortalShortcut> shortcuts;
    const QVariant given = results.value(QStringLiteral("shortcuts"));
    if (given.canConvert<QDBusArgument>())
        given.value<QDBusArgument>() >> shortcuts;
    QStringList names;
    for (const PortalShortcut &shortcut : std::as_const(shortcuts))
        names << shortcut.name;
    return names;
}

} // namespace

} // namespace tovek

Q_DECLARE_METATYPE(tovek::PortalShortcut)

namespace tovek {

std::unique_ptr<PortalHotKeys> PortalHotKeys::create(std::shared_ptr<PortalBus> bus,
                                                     const KeyboardLayout &layout, Desktop desktop)
{
    if (!bus->isOffered())
        return nullptr;
    const QDBusReply<QDBusVariant> version =
        bus->connection().call(Portal::get(shortcutsInterface, QStringLiteral("version")),
                               QDBus::Block, shortcutPatienceMs);
    if (!version.isValid() || version.value().variant().toUInt() < 1)
        return nullptr;
    return std::unique_ptr<PortalHotKeys>(new PortalHotKeys(std::move(bus), layout, desktop));
}

PortalHotKeys::PortalHotKeys(std::shared_ptr<PortalBus> bus, const KeyboardLayout &layout,
                             Desktop desktop)
    : DeferredHotKeys(layout)
    , m_bus(std::move(bus))
    , m_desktop(desktop)
{
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    m_silence.setSingleShot(true);
    connect(&m_silence, &QTimer::timeout, this, &PortalHotKeys::fellSilent);
    listen();
    connect(m_bus.get(), &PortalBus::portalLost, this, [this] {
        m_session.clear();
        m_asked.clear();
    });
    connect(m_bus.get(), &PortalBus::portalStarted, this, [this] {
        listen();
        askSoon();
    });
}

PortalHotKeys::~PortalHotKeys()
{
    closeSession();
}

void PortalHotKeys::listen()
{
    QDBusConnection connection = m_bus->connection();
    const QString interface = QStringLiteral("org.freedesktop.portal.") + shortcutsInterface;
    connection.connect(QString(), Portal::path, interface, QStringLiteral("Activated"), this,
                       SLOT(activated(QDBusObjectPath, QString, qulonglong, QVariantMap)));
    connection.connect(QString(), Portal::path, interface, QStringLiteral("Deactivated"), this,
                       SLOT(deactivated(QDBusObjectPath, QString, qulonglong, QVariantMap)));
}

/// As the portal wants keys to be written.
QString PortalHotKeys::triggerOf(KeyCombo combo) const
{
    constexpr struct
    {
        const char *name;
        quint32 bit;
    } modifiers[] = {{"CTRL+", ComboModifier::control},
                     {"ALT+", ComboModifier::option},
                     {"SHIFT+", ComboModifier::shift},
                     {"LOGO+", ComboModifier::command}};
    QString sign;
    if (m_desktop == Desktop::kde && (combo.modifiers & ComboModifier::shift))
        sign = shiftedSymbolNameOf(combo.keyCode, layout());
    if (!sign.isEmpty())
        combo.modifiers &= ~ComboModifier::shift;
    QString trigger;
    for (const auto &[name, bit] : modifiers) {
        if (combo.modifiers & bit)
            trigger += QLatin1String(name);
    }
    return trigger + (sign.isEmpty() ? symbolNameOf(combo.keyCode, layout()) : sign);
}

QString PortalHotKeys::nameOf(KeyCombo combo) const
{
    const auto purpose = purposeOf ? purposeOf(combo) : std::nullopt;
    return (purpose ? purpose->id : QStringLiteral("shortcut")) + QLatin1Char(':')
        + triggerOf(combo);
}

void PortalHotKeys::ask()
{
    if (m_isBusy) {
        m_isOutdated = true;
        return;
    }
    m_isOutdated = false;
    std::map<QString, KeyCombo> asked;
    for (const auto &[id, combo] : wanted())
        asked.emplace(nameOf(combo), combo);
    if (asked == m_asked && (asked.empty() || !m_session.isEmpty()))
        return;
    // A session takes one list of shortcuts, and keeps it.
    closeSession();
    m_asked = std::move(asked);
    if (!m_asked.empty())
        openSession();
}

void PortalHotKeys::openSession()
{
    m_isBusy = true;
    PortalRequest::send(*m_bus, Portal::call(shortcutsInterface, QStringLiteral("CreateSession")),
                        {{QStringLiteral("session_handle_token"), m_bus->nextToken()}},
                        sessionLimit, this, [this](const PortalAnswer &answer) {
                            m_session =
                                answer.results.value(QStringLiteral("session_handle")).toString();
                            if (m_session.isEmpty())
                                return bound(answer);
                            bind();
                        });
}

void PortalHotKeys::bind()
{
    QList<PortalShortcut> shortcuts;
    for (const auto &[name, combo] : m_asked) {
        const auto purpose = purposeOf ? purposeOf(combo) : std::nullopt;
        shortcuts.append(
            {name,
             {{QStringLiteral("description"), purpose ? purpose->title : QStringLiteral("Capture")},
              {QStringLiteral("preferred_trigger"), triggerOf(combo)}}});
    }
    QDBusMessage call = Portal::call(shortcutsInterface, QStringLiteral("BindShortcuts"));
    call << QVariant::fromValue(QDBusObjectPath(m_session)) << QVariant::fromValue(shortcuts)
         << QString();
    PortalRequest::send(*m_bus, call, {}, shortcutThinkingTime, this,
                        [this](const PortalAnswer &answer) { bound(answer); });
}

void PortalHotKeys::bound(const PortalAnswer &answer)
{
    m_isBusy = false;
    // Not by its code: GNOME 48 gives any (it is not initialised there).
    const QStringList names = namesIn(answer.results);
    if (names.isEmpty() && !answer.reason().isEmpty())
        logLine(QStringLiteral("The desktop gave no shortcut: ") + answer.reason());
    const std::map<QString, KeyCombo> asked = m_asked;
    for (const auto &[name, combo] : asked) {
        if (names.contains(name))
            continue;
        m_asked.erase(name);
        refuse(combo);
    }
    if (m_isOutdated)
        askSoon();
}

void PortalHotKeys::closeSession()
{
    if (m_session.isEmpty())
        return;
    QDBusConnection connection = m_bus->connection();
    connection.send(QDBusMessage::createMethodCall(Portal::service, std::exchange(m_session, {}),
                                                   QStringLiteral("org.freedesktop.portal.Session"),
                                                   QStringLiteral("Close")));
}

std::optional<quint32> PortalHotKeys::idOf(const QString &session, const QString &name) const
{
    const auto asked = m_asked.find(name);
    if (session != m_session || asked == m_asked.end())
        return std::nullopt;
    for (const auto &[id, combo] : wanted()) {
        if (combo == asked->second)
            return id;
    }
    return std::nullopt;
}

void PortalHotKeys::activated(const QDBusObjectPath &session, const QString &name, qulonglong,
                              const QVariantMap &)
{
    const auto id = idOf(session.path(), name);
    if (!id)
        return;
    if (m_desktop == Desktop::gnome) {
        const bool isRepeat = m_held == name;
        m_silence.start(isRepeat && m_isReleaseTold ? repeatDelay : longestTap);
        if (isRepeat)
            return;
        m_held = name;
        m_isReleaseTold = false;
    }
    if (onPressed)
        onPressed(*id);
}

void PortalHotKeys::deactivated(const QDBusObjectPath &session, const QString &name, qulonglong,
                                const QVariantMap &)
{
    const bool isToldAlready = m_held == name && m_isReleaseTold;
    m_held.clear();
    m_silence.stop();
    if (const auto id = idOf(session.path(), name); id && onReleased && !isToldAlready)
        onReleased(*id);
}

void PortalHotKeys::fellSilent()
{
    if (m_isReleaseTold)
        return m_held.clear();
    m_isReleaseTold = true;
    m_silence.start(repeatDelay);
    if (const auto id = idOf(m_session, m_held); id && onReleased)
        onReleased(*id);
}

} // namespace tovek
