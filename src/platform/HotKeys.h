// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <functional>

namespace tovek {

/// The bits of KeyCombo::modifiers. Stored shortcuts hold the same ones.
namespace ComboModifier {
inline constexpr quint32 control = 0x1000;
inline constexpr quint32 option = 0x800; ///< Alt
inline constexpr quint32 shift = 0x200;
inline constexpr quint32 command = 0x100; ///< Super
} // namespace ComboModifier

/// A key and the modifiers that must be held with it, as shortcuts store them.
struct KeyCombo
{
    quint32 keyCode = 0; ///< hardware key code by position
    quint32 modifiers = 0; ///< of ComboModifier

    bool operator==(const KeyCombo &) const = default;
};

/// What makes a key run a command in the user's own settings of the desktop.
struct CommandBinding
{
    QString place; ///< where `line` belongs, as people say it
    QString line;

    bool operator==(const CommandBinding &) const = default;
};

/// What a combination starts, for a desktop that shows it to the user, or starts it by itself.
struct HotKeyPurpose
{
    QString id; ///< the same in every run
    QString title;
    QString command; ///< a line for a shell

    bool operator==(const HotKeyPurpose &) const = default;
};

/// System-wide keys. Main thread only.
///
/// A combination fires whatever the lock keys are; a key held down fires once, and one that was
/// down already when the combination was grabbed fires when it is pressed again. Where the system
/// reports no release, `onReleased` follows `onPressed` at once (see `reportsRelease`).
class HotKeys
{
public:
    virtual ~HotKeys() = default;
    /// No key of the keyboard has the code.
    static constexpr int noSuchKey = 1;
    /// Another program holds the combination, as an X server says it.
    static constexpr int heldElsewhere = 10;
    /// 0, or the window system's status: that of its error when another program holds the
    /// combination, or noSuchKey.
    [[nodiscard]] virtual int grab(quint32 id, KeyCombo combo) = 0;
    virtual void release(quint32 id) = 0;
    /// While on, keys that go to this program itself (one of its menus is open) are offered to
    /// `onRawKey` first.
    virtual void setWatchingRawKeys(bool isOn) = 0;
    virtual bool reportsRelease() const = 0;
    /// True when another program or the desktop itself holds the combination now.
    virtual bool isTaken(KeyCombo combo) = 0;
    /// Where the desktop gives its keys to no program: how the user gives one to a command of
    /// ours. Absent where `grab` does it.
    virtual std::optional<CommandBinding> commandBinding(KeyCombo, const QString &) const
    {
        return std::nullopt;
    }

    /// While on, `onMayBeFree` is called when what was refused may be had: a program has left, or
    /// the keyboard has another map. Watching costs something.
    virtual void setWatchingForFreedKeys(bool) { }
    /// The name of the program that holds most of what is taken, the window manager; mostly empty.
    virtual QString likelyHolder() const { return {}; }

    /// What a combination is for; to be set by the owner.
    std::function<std::optional<HotKeyPurpose>(KeyCombo combo)> purposeOf;
    /// A combination that was given is not ours after all: the desktop was asked, and took its
    /// time.
    std::function<void(quint32 id)> onRefused;
    std::function<void()> onMayBeFree;
    std::function<void(quint32 id)> onPressed;
    std::function<void(quint32 id)> onReleased;
    /// True swallows the key: the menu does not see it.
    std::function<bool(KeyCombo combo, bool isDown)> onRawKey;
};

} // namespace tovek
