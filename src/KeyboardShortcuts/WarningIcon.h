// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QIcon>

namespace KeyboardShortcuts {

/// A triangle with an exclamation mark; sharp at every scale, whatever icons the desktop has.
QIcon warningIcon();

} // namespace KeyboardShortcuts
