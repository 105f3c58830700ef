// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"

#include <optional>

namespace tovek {

/// Who uses a combination, in the words of the desktop's settings.
struct ShortcutUse
{
    QString user; ///< a program, or what of the desktop
    QString place; ///< where in its settings the user takes the combination away; may be empty
};

/// The combinations that the desktop's own settings list as used, which another program need not
/// hold at this moment. Main thread only.
class SystemShortcuts
{
public:
    virtual ~SystemShortcuts() = default;
    /// Begins to read what may have changed, without waiting for it.
    virtual void refresh() = 0;
    /// Waits for what is still being read, half a second at most; what has not come by then
    /// lists nothing.
    virtual std::optional<ShortcutUse> use(KeyCombo combo) = 0;
    bool contains(KeyCombo combo) { return use(combo).has_value(); }

    /// Whether the desktop gives up its own use of a combination when a program asks. Waits as
    /// `use` does.
    virtual bool canTakeAway(KeyCombo) { return false; }
    /// Does so, and gives what `giveBack` wants; empty when it did not work.
    virtual QString takeAway(KeyCombo) { return {}; }
    virtual void giveBack(const QString &) { }
};

} // namespace tovek
