// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"

namespace tovek {

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
    virtual bool contains(KeyCombo combo) = 0;
};

} // namespace tovek
