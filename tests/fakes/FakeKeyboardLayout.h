// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/KeyboardLayout.h"

#include <QHash>

namespace tovek {

/// Types what the test says; nothing at first.
class FakeKeyboardLayout : public KeyboardLayout
{
public:
    std::optional<QString> character(int carbonKeyCode) const override
    {
        asked.push_back(carbonKeyCode);
        const auto found = characters.constFind(carbonKeyCode);
        return found == characters.cend() ? std::nullopt : std::optional(*found);
    }
    /// Another layout, which everybody is told of.
    void change(const QHash<int, QString> &newCharacters)
    {
        characters = newCharacters;
        if (onChanged)
            onChanged();
    }

    QHash<int, QString> characters;
    mutable QList<int> asked;
};

} // namespace tovek
