// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "KeyboardShortcuts/Shortcut.h"

#include <functional>
#include <map>

namespace tovek {
class HotKeys;
}

namespace KeyboardShortcuts {

/// What a hot-key id is given to the system with.
struct HotKeyId
{
    quint32 signature = 0;
    quint32 id = 0;

    bool operator==(const HotKeyId &) const = default;
};

/// A keyboard event of the system. The parameters are there according to its kind.
struct KeyboardEvent
{
    enum Kind : quint32 { rawKeyDown = 1, rawKeyUp = 3, hotKeyPressed = 5, hotKeyReleased = 6 };

    quint32 kind = 0;
    std::optional<HotKeyId> hotKeyId;
    std::optional<quint32> keyCode;
    std::optional<quint32> modifiers;
};

/// Registers shortcuts as hot keys and tells of their presses and releases. While a menu of this
/// program is open, hot keys are given back to the system and raw keys are watched instead. Main
/// thread only; takes over the callbacks of the hot keys.
class CarbonKeyboardShortcuts
{
public:
    using Action = std::function<void(const Shortcut &)>;

    static constexpr quint32 signature = 0x53534B53;
    static constexpr int noError = 0;
    static constexpr int eventNotHandled = -9874;
    static constexpr int eventParameterNotFound = -9870;

    /// `describe` gives the text of a shortcut for the line that reports a refused one.
    CarbonKeyboardShortcuts(tovek::HotKeys &hotKeys,
                            std::function<QString(const Shortcut &)> describe);
    ~CarbonKeyboardShortcuts();

    enum class Refusal { logged, expected };
    /// Ids run from 1 and are never used again. One line is logged, unless it was to be expected,
    /// and nothing is kept, when the system refuses. A key code or modifiers beyond 32 bits end the
    /// program.
    void registerShortcut(const Shortcut &shortcut, Action onKeyDown, Action onKeyUp,
                          Refusal refusal = Refusal::logged);
    /// True also while the system has the hot key back for as long as a menu is open.
    bool isRegistered(const Shortcut &shortcut) const;
    /// Does nothing for a shortcut that is not registered.
    void unregisterShortcut(const Shortcut &shortcut);

    bool isEnabled() const { return m_isEnabled; }
    void setEnabled(bool isEnabled);
    bool isMenuOpen() const { return m_isMenuOpen; }
    void setMenuOpen(bool isOpen);

    /// The one handler of all events; a status, noError when the event was taken.
    int handle(const std::optional<KeyboardEvent> &event);

    /// The system gave some hot key to somebody else after all, as it can after a menu.
    std::function<void()> onDropped;

private:
    struct HotKey
    {
        Shortcut shortcut;
        quint32 carbonHotKeyId = 0;
        bool hasHandle = false; ///< registered with the system now
        Action onKeyDown;
        Action onKeyUp;
    };

    void installHandler();
    void update();
    void registerAll();
    void unregisterAll();
    int grab(const HotKey &hotKey);
    void drop(quint32 id);
    int handleHotKey(const KeyboardEvent &event);
    int handleRawKey(const KeyboardEvent &event);
    void logRefusal(const Shortcut &shortcut, int status) const;

    tovek::HotKeys &m_hotKeys;
    std::function<QString(const Shortcut &)> m_describe;
    std::map<quint32, HotKey> m_table;
    quint32 m_lastHotKeyId = 0;
    bool m_isHandlerInstalled = false;
    bool m_takesHotKeys = false; ///< the handler is called for presses and releases of hot keys
    bool m_isEnabled = true;
    bool m_isMenuOpen = false;
};

} // namespace KeyboardShortcuts
