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

    bool canTakeAway(KeyCombo combo) override { return givesUp && listed.contains(combo); }
    QString takeAway(KeyCombo combo) override
    {
        listed.removeAll(combo);
        return QStringLiteral("key %1").arg(combo.keyCode);
    }
    void giveBack(const QString &taken) override
    {
        listed << KeyCombo{taken.section(QLatin1Char(' '), 1).toUInt(), 0};
    }

    QList<KeyCombo> listed;
    bool givesUp = false; ///< what it has itself
    ShortcutUse entry; ///< what the settings say of each
    int refreshes = 0;
};

} // namespace tovek
