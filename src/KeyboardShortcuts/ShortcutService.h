// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"
#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/NotificationCenter.h"

#include <memory>
#include <vector>

namespace tovek {
class KeyboardLayout;
class UserDefaults;
} // namespace tovek

namespace KeyboardShortcuts {

class MenuTracking;
enum class EventType { keyDown, keyUp };

/// The module's front end: one stored shortcut a name, and the actions that it runs. The store is
/// the only state of a shortcut; it is read again whenever it is asked for. Main thread only;
/// takes over the callbacks of the hot keys and of the layout, both of which must outlive it.
class ShortcutService
{
public:
    using Action = std::function<void()>;

    ShortcutService(tovek::UserDefaults &defaults, tovek::HotKeys &hotKeys,
                    tovek::KeyboardLayout &layout);
    ~ShortcutService();

    /// The one of the process, which its main installs.
    static ShortcutService &shared();
    static void setShared(std::unique_ptr<ShortcutService> service);

    /// Stores the default when nothing at all is stored under the name, and watches menus.
    Name createName(const QString &rawValue, std::optional<Shortcut> defaultShortcut = {});
    /// Absent also when what is stored is no shortcut, or one that no keyboard can have.
    std::optional<Shortcut> shortcut(const Name &name) const;
    /// Stores, or removes where there is none given. The hot key is the system's, or refused, and
    /// shortcutByNameDidChange posted, when this returns. Removing nothing does nothing.
    void setShortcut(const Name &name, const std::optional<Shortcut> &shortcut);

    /// Another one of the program's names that has the shortcut now.
    std::optional<Name> otherName(const Shortcut &shortcut, const Name &than) const;
    /// True while the shortcut is stored but the system has given it to somebody else.
    bool isRefused(const Shortcut &shortcut) const;
    /// Asks the system once more for what it has refused, which also happens by itself when that
    /// may have become free. registrationDidChange is posted when something was.
    void retryRefused();
    /// False where the desktop tells of presses only: what is for the release then starts with the
    /// press.
    bool reportsRelease() const;
    /// The program that most likely holds what was refused; mostly empty.
    QString likelyHolder() const;

    void onKeyDown(const Name &name, Action action);
    void onKeyUp(const Name &name, Action action);

    bool isEnabled() const { return m_carbon.isEnabled(); }
    void setEnabled(bool isEnabled) { m_carbon.setEnabled(isEnabled); }
    /// While paused, hot keys stay registered but run no action; nor does the release, later, of a
    /// key that was pressed before or meanwhile.
    bool isPaused() const { return m_isPaused; }
    void setPaused(bool isPaused);
    bool isMenuOpen() const { return m_carbon.isMenuOpen(); }
    void setMenuOpen(bool isOpen) { m_carbon.setMenuOpen(isOpen); }
    /// Follows this program's own menus with `setMenuOpen`, from when there is an application.
    /// Called by createName and the subscriptions, and again once the application exists where
    /// those came before it.
    void watchMenus();

    QString description(const Shortcut &shortcut) const;
    /// True when another program or the desktop uses the combination.
    bool isSystemShortcut(const Shortcut &shortcut) const;

    const tovek::KeyboardLayout &layout() const { return m_layout; }
    NotificationCenter &notifications() { return m_notifications; }

    /// The key of a shortcut that has an action went down: its release may follow within a tenth
    /// of a second, so that what the action needs can be prepared now. Not called while paused.
    std::function<void()> onPrepare;

private:
    struct Subscription
    {
        Name name;
        std::vector<Action> actions;
    };
    using Subscriptions = std::vector<Subscription>;

    void subscribe(Subscriptions &subscriptions, const Name &name, Action action);
    /// A line about what only a damaged store can hold.
    void logIfBroken(const Name &name) const;
    void store(const Name &name, const Shortcut &shortcut);
    void remove(const Name &name);
    void remember(const Name &name);
    void registerShortcut(const Shortcut &shortcut);
    void unregisterShortcut(const Shortcut &shortcut);
    void requestHotKey(const Shortcut &shortcut, CarbonKeyboardShortcuts::Refusal refusal);
    void watchForFreedKeys();
    void dispatch(EventType type, const Shortcut &pressed);
    void postChange(const Name &name);

    tovek::UserDefaults &m_defaults;
    tovek::HotKeys &m_hotKeys;
    tovek::KeyboardLayout &m_layout;
    NotificationCenter m_notifications;
    CarbonKeyboardShortcuts m_carbon;
    std::vector<Name> m_names; ///< that the program has made or subscribed
    std::vector<Shortcut> m_registered; ///< or refused
    std::vector<Shortcut> m_pressed; ///< whose release may act
    Subscriptions m_keyDownActions;
    Subscriptions m_keyUpActions;
    bool m_isPaused = false;
    std::unique_ptr<MenuTracking> m_menuTracking;
};

/// True when the process runs in a sandbox; found out once.
bool isSandboxed();

} // namespace KeyboardShortcuts
