// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace tovek {

/// What the keys of the current layout type. Main thread only.
class KeyboardLayout
{
public:
    virtual ~KeyboardLayout() = default;
    /// The one character that the key with this hardware code types without modifiers, in the
    /// active layout; where that types no Latin letters, in the first of the user's layouts that
    /// does, or else in the American one.
    /// Absent for a dead key, for a key without a character, and for one that does not exist.
    virtual std::optional<QString> character(int keyCode) const = 0;
    /// What it types with Shift, in the same layout.
    virtual std::optional<QString> shiftedCharacter(int keyCode) const = 0;

    /// The same for a key as key events of our own windows name it.
    virtual std::optional<QString> characterOfScanCode(quint32 nativeScanCode) const = 0;
    /// The hardware code of such a key; KeyCode::none for a key without one.
    virtual int keyCodeOfScanCode(quint32 nativeScanCode) const = 0;

    std::function<void()> onChanged;
};

} // namespace tovek
