// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/SystemShortcuts.h"

#include <QList>

namespace tovek {

/// A desktop whose settings list what the test says.
class FakeSystemShortcuts : public SystemShortcuts
{
public:
    void refresh() override { ++refreshes; }
    std::optional<ShortcutUse> use(KeyCombo combo) override
    {
        return listed.contains(combo) ? std::optional(entry) : std::nullopt;
    }

    QList<KeyCombo> listed;
    ShortcutUse entry; ///< what the settings say of each
    int refreshes = 0;
};

} // namespace tovek
