// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Keys.h"

#include <QHashFunctions>

#include <optional>

namespace KeyboardShortcuts {

/// What happened to a key or a mouse button, as far as a shortcut can come of it.
struct InputEvent
{
    enum class Type { keyDown, keyUp, flagsChanged, leftMouseUp, rightMouseUp, other };

    Type type = Type::other;
    /// With the modifiers as they are on the keyboard: control is Ctrl, command is Super.
    tovek::KeyPress key;
};

/// A key, by its place on the keyboard, and the modifiers that are held with it.
struct Shortcut
{
    qint64 carbonKeyCode = 0;
    qint64 carbonModifiers = 0; ///< see carbonModifiers()

    /// The modifiers as flags of a key event.
    tovek::KeyFlags flags() const;
    /// Absent for anything but a key that goes down or up, and for a key without a code. Never
    /// carries the Function flag, even of a key that sets it.
    static std::optional<Shortcut> fromEvent(const InputEvent &event);

    /// The stored form, for example {"carbonKeyCode":8,"carbonModifiers":768}.
    QString toJson() const;
    /// Reads the members in any order and passes over others. Absent when the text is no object,
    /// or one of the two is missing or no whole number.
    static std::optional<Shortcut> fromJson(const QString &json);

    /// Whether a hot key can be registered for it: both numbers fit in 32 bits without a sign.
    bool isRegistrable() const;

    bool operator==(const Shortcut &) const = default;
};

inline size_t qHash(const Shortcut &shortcut, size_t seed = 0)
{
    return qHashMulti(seed, shortcut.carbonKeyCode, shortcut.carbonModifiers);
}

/// The bits that shortcuts store for the five modifiers they know: control 0x1000, option 0x800,
/// shift 0x200, command 0x100, function 0x20000. Other flags are dropped.
qint64 carbonModifiers(tovek::KeyFlags flags);
/// The exact inverse over the five bits; others are dropped.
tovek::KeyFlags keyFlags(qint64 carbonModifiers);
/// Drops every bit that is none of the five.
qint64 normalizedModifiers(qint64 carbonModifiers);

} // namespace KeyboardShortcuts
