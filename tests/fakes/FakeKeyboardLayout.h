// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/KeyboardLayout.h"
#include "platform/linux/KeyCodes.h"

#include <QHash>

namespace tovek {

/// Types what the test says; nothing at first.
class FakeKeyboardLayout : public KeyboardLayout
{
public:
    std::optional<QString> character(int keyCode) const override
    {
        asked.push_back(keyCode);
        const auto found = characters.constFind(keyCode);
        return found == characters.cend() ? std::nullopt : std::optional(*found);
    }
    std::optional<QString> shiftedCharacter(int keyCode) const override
    {
        const auto found = shifted.constFind(keyCode);
        if (found != shifted.cend())
            return *found;
        const auto plain = characters.constFind(keyCode);
        return plain == characters.cend() ? std::nullopt : std::optional(plain->toUpper());
    }
    std::optional<QString> characterOfScanCode(quint32 nativeScanCode) const override
    {
        return character(keyCodeOfScanCode(nativeScanCode));
    }
    int keyCodeOfScanCode(quint32 nativeScanCode) const override
    {
        return hardwareKeyCode(int(nativeScanCode) - windowSystemKeyOffset);
    }

    /// Another layout, which everybody is told of.
    void change(const QHash<int, QString> &newCharacters)
    {
        characters = newCharacters;
        if (onChanged)
            onChanged();
    }

    QHash<int, QString> characters;
    QHash<int, QString> shifted; ///< where it is not the capital letter
    mutable QList<int> asked;
};

} // namespace tovek
