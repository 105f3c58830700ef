// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/ShortcutService.h"

#include "KeyboardShortcuts/MenuTracking.h"
#include "KeyboardShortcuts/ShortcutDescription.h"
#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/UserDefaults.h"
#include "platform/HotKeys.h"
#include "platform/KeyboardLayout.h"

#include <QCoreApplication>

#include <algorithm>

namespace KeyboardShortcuts {

namespace {

std::unique_ptr<ShortcutService> sharedService;

} // namespace

ShortcutService::ShortcutService(tovek::UserDefaults &defaults, tovek::HotKeys &hotKeys,
                                 tovek::KeyboardLayout &layout)
    : m_defaults(defaults)
    , m_hotKeys(hotKeys)
    , m_layout(layout)
    , m_carbon(hotKeys, [this](const Shortcut &shortcut) { return description(shortcut); })
{
    m_layout.onChanged = [this] { m_notifications.post(keyboardLayoutDidChange); };
    m_hotKeys.onMayBeFree = [this] { retryRefused(); };
    m_carbon.onDropped = [this] {
        watchForFreedKeys();
        m_notifications.post(registrationDidChange);
    };
}

ShortcutService::~ShortcutService()
{
    m_layout.onChanged = {};
    m_hotKeys.onMayBeFree = {};
    m_hotKeys.setWatchingForFreedKeys(false);
}

ShortcutService &ShortcutService::shared()
{
    Q_ASSERT(sharedService);
    return *sharedService;
}

void ShortcutService::setShared(std::unique_ptr<ShortcutService> service)
{
    sharedService = std::move(service);
}

Name ShortcutService::createName(const QString &rawValue, std::optional<Shortcut> defaultShortcut)
{
    const Name name{rawValue, defaultShortcut};
    remember(name);
    if (defaultShortcut && !m_defaults.contains(name.key()))
        store(name, *defaultShortcut);
    watchMenus();
    return name;
}

std::optional<Shortcut> ShortcutService::shortcut(const Name &name) const
{
    const auto stored = m_defaults.string(name.key());
    const auto shortcut = stored ? Shortcut::fromJson(*stored) : std::nullopt;
    return shortcut && shortcut->isRegistrable() ? shortcut : std::nullopt;
}

void ShortcutService::setShortcut(const Name &name, const std::optional<Shortcut> &shortcut)
{
    Q_ASSERT(tovek::isMainThread());
    if (shortcut)
        store(name, *shortcut);
    else
        remove(name);
}

std::optional<Name> ShortcutService::otherName(const Shortcut &shortcut, const Name &than) const
{
    const auto found = std::find_if(m_names.begin(), m_names.end(), [&](const Name &name) {
        return name != than && this->shortcut(name) == shortcut;
    });
    return found == m_names.end() ? std::nullopt : std::optional(*found);
}

bool ShortcutService::isRefused(const Shortcut &shortcut) const
{
    return std::find(m_registered.begin(), m_registered.end(), shortcut) != m_registered.end()
        && !m_carbon.isRegistered(shortcut);
}

void ShortcutService::retryRefused()
{
    if (!isEnabled() || isMenuOpen())
        return;
    bool isAnyFree = false;
    for (const Shortcut &shortcut : m_registered) {
        if (!isRefused(shortcut))
            continue;
        requestHotKey(shortcut, CarbonKeyboardShortcuts::Refusal::expected);
        isAnyFree = isAnyFree || m_carbon.isRegistered(shortcut);
    }
    watchForFreedKeys();
    if (isAnyFree)
        m_notifications.post(registrationDidChange);
}

bool ShortcutService::reportsRelease() const
{
    return m_hotKeys.reportsRelease();
}

QString ShortcutService::likelyHolder() const
{
    return m_hotKeys.likelyHolder();
}

void ShortcutService::onKeyDown(const Name &name, Action action)
{
    subscribe(m_keyDownActions, name, std::move(action));
}

void ShortcutService::onKeyUp(const Name &name, Action action)
{
    subscribe(m_keyUpActions, name, std::move(action));
}

void ShortcutService::setPaused(bool isPaused)
{
    Q_ASSERT(tovek::isMainThread());
    m_isPaused = isPaused;
    m_pressed.clear();
}

void ShortcutService::watchMenus()
{
    if (m_menuTracking || !QCoreApplication::instance())
        return;
    m_menuTracking = std::make_unique<MenuTracking>();
    m_menuTracking->onChanged = [this](bool isOpen) { setMenuOpen(isOpen); };
}

QString ShortcutService::description(const Shortcut &shortcut) const
{
    return KeyboardShortcuts::description(shortcut, m_layout);
}

bool ShortcutService::isSystemShortcut(const Shortcut &shortcut) const
{
    return shortcut.isRegistrable()
        && m_hotKeys.isTaken({quint32(shortcut.carbonKeyCode),
                              quint32(normalizedModifiers(shortcut.carbonModifiers))});
}

void ShortcutService::subscribe(Subscriptions &subscriptions, const Name &name, Action action)
{
    watchMenus();
    remember(name);
    auto found =
        std::find_if(subscriptions.begin(), subscriptions.end(),
                     [&](const Subscription &subscription) { return subscription.name == name; });
    if (found == subscriptions.end()) {
        found = subscriptions.insert(subscriptions.end(), {name, {}});
        logIfBroken(name);
    }
    found->actions.push_back(std::move(action));
    if (const auto stored = shortcut(name))
        registerShortcut(*stored);
}

void ShortcutService::logIfBroken(const Name &name) const
{
    const auto stored = m_defaults.string(name.key());
    const auto broken = stored ? Shortcut::fromJson(*stored) : std::nullopt;
    if (broken && !broken->isRegistrable())
        tovek::logLine(
            QStringLiteral("Stored shortcut %1 is none: %2").arg(name.rawValue, *stored));
}

void ShortcutService::store(const Name &name, const Shortcut &shortcut)
{
    if (const auto old = this->shortcut(name); old && !otherName(*old, name))
        unregisterShortcut(*old);
    registerShortcut(shortcut);
    m_defaults.setString(name.key(), shortcut.toJson());
    postChange(name);
}

void ShortcutService::remove(const Name &name)
{
    const auto old = shortcut(name);
    if (!old)
        return;
    // What is stored keeps the default from coming back at the next start.
    if (name.defaultShortcut)
        m_defaults.setBoolean(name.key(), false);
    else
        m_defaults.remove(name.key());
    if (!otherName(*old, name))
        unregisterShortcut(*old);
    postChange(name);
}

void ShortcutService::remember(const Name &name)
{
    if (std::find(m_names.begin(), m_names.end(), name) == m_names.end())
        m_names.push_back(name);
}

void ShortcutService::registerShortcut(const Shortcut &shortcut)
{
    Q_ASSERT(tovek::isMainThread());
    if (std::find(m_registered.begin(), m_registered.end(), shortcut) != m_registered.end())
        return;
    requestHotKey(shortcut, CarbonKeyboardShortcuts::Refusal::logged);
    m_registered.push_back(shortcut);
    watchForFreedKeys();
}

void ShortcutService::unregisterShortcut(const Shortcut &shortcut)
{
    Q_ASSERT(tovek::isMainThread());
    m_carbon.unregisterShortcut(shortcut);
    std::erase(m_registered, shortcut);
    std::erase(m_pressed, shortcut);
    watchForFreedKeys();
}

void ShortcutService::requestHotKey(const Shortcut &shortcut,
                                    CarbonKeyboardShortcuts::Refusal refusal)
{
    m_carbon.registerShortcut(
        shortcut, [this](const Shortcut &pressed) { dispatch(EventType::keyDown, pressed); },
        [this](const Shortcut &pressed) { dispatch(EventType::keyUp, pressed); }, refusal);
}

void ShortcutService::watchForFreedKeys()
{
    m_hotKeys.setWatchingForFreedKeys(
        std::any_of(m_registered.begin(), m_registered.end(),
                    [this](const Shortcut &shortcut) { return isRefused(shortcut); }));
}

void ShortcutService::dispatch(EventType type, const Shortcut &pressed)
{
    if (m_isPaused)
        return;
    const bool wasPressed = std::erase(m_pressed, pressed) > 0;
    if (type == EventType::keyDown)
        m_pressed.push_back(pressed);
    else if (!wasPressed)
        return; // of a press that a recorder took
    const auto isMeant = [&](const Subscription &subscription) {
        return shortcut(subscription.name) == pressed;
    };
    if (type == EventType::keyDown && onPrepare
        && std::any_of(m_keyUpActions.begin(), m_keyUpActions.end(), isMeant))
        onPrepare();
    // A copy, because an action may subscribe others.
    const Subscriptions subscriptions =
        type == EventType::keyDown ? m_keyDownActions : m_keyUpActions;
    for (const Subscription &subscription : subscriptions) {
        if (!isMeant(subscription))
            continue;
        for (const Action &action : subscription.actions)
            action();
    }
}

void ShortcutService::postChange(const Name &name)
{
    m_notifications.post(shortcutByNameDidChange,
                         {{QStringLiteral("name"), QVariant::fromValue(name)}});
}

bool isSandboxed()
{
    static const bool isSandboxed = qEnvironmentVariableIsSet("APP_SANDBOX_CONTAINER_ID");
    return isSandboxed;
}

} // namespace KeyboardShortcuts
