// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/KGlobalAccelHotKeys.h"

#include "platform/KeyboardLayout.h"
#include "platform/linux/KGlobalAccel.h"
#include "platform/linux/QtKeys.h"

#include <QDBusConnectionInterface>
#include <QDBusObjectPath>
#include <QDBusReply>

#include <algorithm>

namespace tovek {

using KGlobalAccel::Sequence;

namespace {

constexpr int kdePatienceMs = 1000;

/// The action's key is in force, and it is this one, not one that was stored before.
constexpr uint setPresent = 2;
constexpr uint noAutoloading = 4;

const QString actionPrefix = QStringLiteral("shortcut-");

/// Component and action, each by its name and as people read it.
QStringList actionId(quint32 id)
{
    return {KGlobalAccel::ownComponent, actionPrefix + QString::number(id), QStringLiteral("Tovek"),
            QStringLiteral("Shortcut %1").arg(id)};
}

std::optional<quint32> idOf(const QString &component, const QString &action)
{
    if (component != KGlobalAccel::ownComponent || !action.startsWith(actionPrefix))
        return std::nullopt;
    bool isNumber = false;
    const uint id = action.mid(actionPrefix.size()).toUInt(&isNumber);
    return isNumber ? std::optional<quint32>(id) : std::nullopt;
}

} // namespace

std::unique_ptr<KGlobalAccelHotKeys> KGlobalAccelHotKeys::create(const QDBusConnection &bus,
                                                                 const KeyboardLayout &layout)
{
    // The constructor is private.
    std::unique_ptr<KGlobalAccelHotKeys> keys(new KGlobalAccelHotKeys(bus, layout));
    return keys->isKeptByTheWindowManager() && keys->connectSignals() ? std::move(keys) : nullptr;
}

KGlobalAccelHotKeys::KGlobalAccelHotKeys(const QDBusConnection &bus, const KeyboardLayout &layout)
    : m_layout(layout)
    , m_bus(bus)
    , m_rawKeys([this](KeyCombo combo, bool isDown) { return onRawKey && onRawKey(combo, isDown); })
{
    KGlobalAccel::registerTypes();
}

KGlobalAccelHotKeys::~KGlobalAccelHotKeys()
{
    while (!m_grabs.empty())
        KGlobalAccelHotKeys::release(m_grabs.begin()->first);
}

int KGlobalAccelHotKeys::grab(quint32 id, KeyCombo combo)
{
    Q_ASSERT(!m_grabs.contains(id));
    const QList<int> keys = qtKeysOf(combo, m_layout);
    if (keys.isEmpty())
        return noSuchKey;
    if (isOurs(combo) || !registerKeys(id, keys))
        return heldElsewhere;
    m_grabs.emplace(id, combo);
    return 0;
}

void KGlobalAccelHotKeys::release(quint32 id)
{
    if (!m_grabs.erase(id))
        return;
    m_repeats.release(id);
    QDBusMessage forget = KGlobalAccel::call(QStringLiteral("unregister"));
    forget << KGlobalAccel::ownComponent << actionId(id).at(1);
    m_bus.call(forget, QDBus::Block, kdePatienceMs);
}

bool KGlobalAccelHotKeys::isTaken(KeyCombo combo)
{
    if (isOurs(combo))
        return false;
    const QList<int> keys = qtKeysOf(combo, m_layout);
    return std::any_of(keys.begin(), keys.end(), [this](int key) {
        QDBusMessage ask = KGlobalAccel::call(QStringLiteral("globalShortcutAvailable"));
        ask << QVariant::fromValue(KGlobalAccel::sequence(key)) << KGlobalAccel::ownComponent;
        const QDBusReply<bool> isAvailable = m_bus.call(ask, QDBus::Block, kdePatienceMs);
        return isAvailable.isValid() && !isAvailable.value();
    });
}

void KGlobalAccelHotKeys::setBus(const QDBusConnection &bus)
{
    m_bus = bus;
    if (m_bus.isConnected() && connectSignals())
        registerAgain();
}

void KGlobalAccelHotKeys::shortcutPressed(const QString &component, const QString &action,
                                          qlonglong)
{
    const auto id = idOf(component, action);
    // Until Plasma 6.5 a held key's repeats are presses like the first one.
    if (id && m_grabs.contains(*id) && m_repeats.press(*id) && onPressed)
        onPressed(*id);
}

void KGlobalAccelHotKeys::shortcutReleased(const QString &component, const QString &action,
                                           qlonglong)
{
    const auto id = idOf(component, action);
    if (id && m_grabs.contains(*id) && m_repeats.release(*id) && onReleased)
        onReleased(*id);
}

bool KGlobalAccelHotKeys::isOurs(KeyCombo combo) const
{
    return std::any_of(m_grabs.begin(), m_grabs.end(),
                       [combo](const auto &entry) { return entry.second == combo; });
}

bool KGlobalAccelHotKeys::isKeptByTheWindowManager() const
{
    QDBusConnectionInterface *const bus = m_bus.interface();
    if (!bus)
        return false;
    const QDBusReply<uint> keeper = bus->servicePid(KGlobalAccel::service);
    const QDBusReply<uint> windowManager = bus->servicePid(QStringLiteral("org.kde.KWin"));
    return keeper.isValid() && windowManager.isValid() && keeper.value() == windowManager.value();
}

bool KGlobalAccelHotKeys::connectSignals()
{
    const QString path = QStringLiteral("/component/") + KGlobalAccel::ownComponent;
    const auto listen = [&](const char *signal, const char *slot) {
        return m_bus.connect(KGlobalAccel::service, path, KGlobalAccel::componentInterface,
                             QLatin1String(signal), this, slot);
    };
    const bool isListening =
        listen("globalShortcutPressed", SLOT(shortcutPressed(QString, QString, qlonglong)))
        && listen("globalShortcutReleased", SLOT(shortcutReleased(QString, QString, qlonglong)));
    m_watcher = std::make_unique<QDBusServiceWatcher>(KGlobalAccel::service, m_bus,
                                                      QDBusServiceWatcher::WatchForRegistration);
    connect(m_watcher.get(), &QDBusServiceWatcher::serviceRegistered, this,
            [this] { registerAgain(); });
    return isListening;
}

bool KGlobalAccelHotKeys::registerKeys(quint32 id, const QList<int> &keys)
{
    const QStringList action = actionId(id);
    QDBusMessage introduce = KGlobalAccel::call(QStringLiteral("doRegister"));
    introduce << action;
    m_bus.call(introduce, QDBus::NoBlock);
    QList<Sequence> wanted;
    for (const int key : keys)
        wanted.append(KGlobalAccel::sequence(key));
    QDBusMessage set = KGlobalAccel::call(QStringLiteral("setShortcutKeys"));
    set << action << QVariant::fromValue(wanted) << (setPresent | noAutoloading);
    const QDBusReply<QList<Sequence>> given = m_bus.call(set, QDBus::Block, kdePatienceMs);
    // What another program has comes back as a sequence of no keys.
    const QList<Sequence> sequences = given.value();
    const bool isGiven =
        std::any_of(sequences.begin(), sequences.end(),
                    [](const Sequence &sequence) { return sequence.keys.value(0) != 0; });
    if (isGiven)
        return true;
    QDBusMessage forget = KGlobalAccel::call(QStringLiteral("unregister"));
    forget << action.at(0) << action.at(1);
    m_bus.call(forget, QDBus::NoBlock);
    return false;
}

/// The window manager was started anew and knows nothing of us.
void KGlobalAccelHotKeys::registerAgain()
{
    for (const auto &[id, combo] : m_grabs)
        registerKeys(id, qtKeysOf(combo, m_layout));
}

} // namespace tovek
