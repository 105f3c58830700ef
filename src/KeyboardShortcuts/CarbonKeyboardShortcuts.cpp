// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"

#include "foundation/Log.h"
#include "platform/HotKeys.h"

#include <algorithm>
#include <limits>

namespace KeyboardShortcuts {

using tovek::HotKeys;
using tovek::KeyCombo;

namespace {

constexpr int laterRefusal = 10; // as an X server says it

quint32 unsigned32(qint64 value, const char *what)
{
    if (value < 0 || value > std::numeric_limits<quint32>::max())
        qFatal("The %s %lld of a shortcut does not fit in 32 bits", what, value);
    return quint32(value);
}

KeyCombo combo(const Shortcut &shortcut)
{
    return {unsigned32(shortcut.carbonKeyCode, "key code"),
            unsigned32(shortcut.carbonModifiers, "modifiers")};
}

} // namespace

CarbonKeyboardShortcuts::CarbonKeyboardShortcuts(HotKeys &hotKeys,
                                                 std::function<QString(const Shortcut &)> describe)
    : m_hotKeys(hotKeys)
    , m_describe(std::move(describe))
{
}

CarbonKeyboardShortcuts::~CarbonKeyboardShortcuts()
{
    unregisterAll();
    m_hotKeys.setWatchingRawKeys(false);
    m_hotKeys.onPressed = {};
    m_hotKeys.onReleased = {};
    m_hotKeys.onRawKey = {};
    m_hotKeys.onRefused = {};
}

void CarbonKeyboardShortcuts::registerShortcut(const Shortcut &shortcut, Action onKeyDown,
                                               Action onKeyUp, Refusal refusal)
{
    if (m_lastHotKeyId == std::numeric_limits<quint32>::max())
        qFatal("There are no ids left for hot keys");
    HotKey hotKey{shortcut, ++m_lastHotKeyId, false, std::move(onKeyDown), std::move(onKeyUp)};
    if (const int status = grab(hotKey); status != noError) {
        if (refusal == Refusal::logged)
            logRefusal(shortcut, status);
        return;
    }
    hotKey.hasHandle = true;
    m_table.insert_or_assign(hotKey.carbonHotKeyId, std::move(hotKey));
    installHandler();
}

bool CarbonKeyboardShortcuts::isRegistered(const Shortcut &shortcut) const
{
    return std::any_of(m_table.begin(), m_table.end(),
                       [&](const auto &entry) { return entry.second.shortcut == shortcut; });
}

void CarbonKeyboardShortcuts::unregisterShortcut(const Shortcut &shortcut)
{
    const auto found = std::find_if(m_table.begin(), m_table.end(), [&](const auto &entry) {
        return entry.second.shortcut == shortcut;
    });
    if (found == m_table.end())
        return;
    if (found->second.hasHandle)
        m_hotKeys.release(found->first);
    m_table.erase(found);
}

void CarbonKeyboardShortcuts::setEnabled(bool isEnabled)
{
    if (m_isEnabled == isEnabled)
        return;
    m_isEnabled = isEnabled;
    update();
}

void CarbonKeyboardShortcuts::setMenuOpen(bool isOpen)
{
    if (m_isMenuOpen == isOpen)
        return;
    m_isMenuOpen = isOpen;
    update();
}

int CarbonKeyboardShortcuts::handle(const std::optional<KeyboardEvent> &event)
{
    if (!event)
        return eventNotHandled;
    switch (event->kind) {
    case KeyboardEvent::hotKeyPressed:
    case KeyboardEvent::hotKeyReleased:
        return handleHotKey(*event);
    case KeyboardEvent::rawKeyDown:
    case KeyboardEvent::rawKeyUp:
        return handleRawKey(*event);
    default:
        return eventNotHandled;
    }
}

void CarbonKeyboardShortcuts::installHandler()
{
    if (m_isHandlerInstalled)
        return;
    m_isHandlerInstalled = true;
    const auto takeHotKey = [this](KeyboardEvent::Kind kind, quint32 id) {
        if (m_takesHotKeys)
            handle(KeyboardEvent{kind, HotKeyId{signature, id}, {}, {}});
    };
    m_hotKeys.onPressed = [takeHotKey](quint32 id) {
        takeHotKey(KeyboardEvent::hotKeyPressed, id);
    };
    m_hotKeys.onReleased = [takeHotKey](quint32 id) {
        takeHotKey(KeyboardEvent::hotKeyReleased, id);
    };
    m_hotKeys.onRefused = [this](quint32 id) { drop(id); };
    m_hotKeys.onRawKey = [this](KeyCombo key, bool isDown) {
        const auto kind = isDown ? KeyboardEvent::rawKeyDown : KeyboardEvent::rawKeyUp;
        return handle(KeyboardEvent{kind, {}, key.keyCode, key.modifiers}) == noError;
    };
    update();
}

void CarbonKeyboardShortcuts::update()
{
    if (!m_isHandlerInstalled)
        return;
    if (m_isEnabled && !m_isMenuOpen) {
        registerAll();
        m_hotKeys.setWatchingRawKeys(false);
        m_takesHotKeys = true;
        return;
    }
    unregisterAll();
    m_takesHotKeys = false;
    m_hotKeys.setWatchingRawKeys(m_isEnabled);
}

void CarbonKeyboardShortcuts::registerAll()
{
    const size_t before = m_table.size();
    for (auto entry = m_table.begin(); entry != m_table.end();) {
        HotKey &hotKey = entry->second;
        const int status = hotKey.hasHandle ? noError : grab(hotKey);
        if (status == noError) {
            hotKey.hasHandle = true;
            ++entry;
            continue;
        }
        logRefusal(hotKey.shortcut, status);
        entry = m_table.erase(entry);
    }
    if (m_table.size() != before && onDropped)
        onDropped();
}

void CarbonKeyboardShortcuts::unregisterAll()
{
    for (auto &[id, hotKey] : m_table) {
        if (hotKey.hasHandle)
            m_hotKeys.release(id);
        hotKey.hasHandle = false;
    }
}

void CarbonKeyboardShortcuts::drop(quint32 id)
{
    const auto found = m_table.find(id);
    if (found == m_table.end())
        return;
    logRefusal(found->second.shortcut, laterRefusal);
    m_table.erase(found);
    if (onDropped)
        onDropped();
}

int CarbonKeyboardShortcuts::grab(const HotKey &hotKey)
{
    return m_hotKeys.grab(hotKey.carbonHotKeyId, combo(hotKey.shortcut));
}

int CarbonKeyboardShortcuts::handleHotKey(const KeyboardEvent &event)
{
    if (!event.hotKeyId)
        return eventParameterNotFound;
    if (event.hotKeyId->signature != signature)
        return eventNotHandled;
    const auto found = m_table.find(event.hotKeyId->id);
    if (found == m_table.end())
        return eventNotHandled;
    // A copy, because the action may unregister the shortcut that it was called for.
    const HotKey hotKey = found->second;
    (event.kind == KeyboardEvent::hotKeyPressed ? hotKey.onKeyDown
                                                : hotKey.onKeyUp)(hotKey.shortcut);
    return noError;
}

int CarbonKeyboardShortcuts::handleRawKey(const KeyboardEvent &event)
{
    if (!event.keyCode || !event.modifiers)
        return eventParameterNotFound;
    const Shortcut pressed{*event.keyCode, normalizedModifiers(*event.modifiers)};
    const auto found = std::find_if(m_table.begin(), m_table.end(), [&](const auto &entry) {
        return entry.second.shortcut == pressed;
    });
    if (found == m_table.end())
        return eventNotHandled;
    const HotKey hotKey = found->second;
    (event.kind == KeyboardEvent::rawKeyDown ? hotKey.onKeyDown : hotKey.onKeyUp)(hotKey.shortcut);
    return noError;
}

void CarbonKeyboardShortcuts::logRefusal(const Shortcut &shortcut, int status) const
{
    tovek::logLine(
        QStringLiteral("Error registering hotkey %1: %2").arg(m_describe(shortcut)).arg(status));
}

} // namespace KeyboardShortcuts
